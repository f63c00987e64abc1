#include "harmonet/kernel/SoundWalk.h"

#include "harmonet/kernel/SndKernel.h"

#include <utility>

namespace Quon
{

EngineVector<int> IdBuffers::Take()
{
    if (spare.empty())
        return {};
    EngineVector<int> buffer = std::move(spare.back());
    spare.pop_back();
    buffer.clear();
    return buffer;
}

void IdBuffers::GiveBack(EngineVector<int>&& buffer)
{
    spare.push_back(std::move(buffer));
}

SoundWalk::SoundWalk(SndKernel& newKernel, const SndList& newList, Direction direction)
    : kernel(newKernel)
    , list(&newList)
    , ids(newKernel.idBuffers.Take())
{
    if (direction == FromHead) {
        for (SndBase* sound = list->GetHead(); sound; sound = list->GetNext(*sound))
            ids.push_back(sound->GetSoundID());
    }
    else {
        for (SndBase* sound = list->GetTail(); sound; sound = list->GetPrevious(*sound))
            ids.push_back(sound->GetSoundID());
    }
}

SoundWalk::SoundWalk(SndKernel& newKernel, EngineVector<int>&& newIds)
    : kernel(newKernel)
    , list(nullptr)
    , ids(std::move(newIds))
{
}

SoundWalk::~SoundWalk()
{
    kernel.idBuffers.GiveBack(std::move(ids));
}

SndBase* SoundWalk::Next()
{
    while (place < ids.size()) {
        SndBase* sound = kernel.FindSound(ids[place++]);
        if (sound && (!list || list->Holds(*sound)) && !kernel.IsNewcomer(*sound))
            return sound;
    }
    return nullptr;
}

} // namespace Quon
