#include "harmonet/kernel/SoundWalk.h"

#include "harmonet/kernel/Prefetch.h"
#include "harmonet/kernel/SndKernel.h"

#include <algorithm>
#include <utility>

namespace Quon
{

EngineVector<KnownSound> WalkBuffers::Take()
{
    if (spare.empty())
        return {};
    EngineVector<KnownSound> buffer = std::move(spare.back());
    spare.pop_back();
    buffer.clear();
    return buffer;
}

void WalkBuffers::GiveBack(EngineVector<KnownSound>&& buffer)
{
    spare.push_back(std::move(buffer));
}

SoundWalk::SoundWalk(
    SndKernel& newKernel, const SndList& newList, Direction direction, Newcomers newNewcomers)
    : kernel(newKernel)
    , list(&newList)
    , newcomers(newNewcomers)
    , sounds(newKernel.walkBuffers.Take())
    , numRemovedAtStart(newKernel.soundTable.GetNumRemoved())
{
    list->ForEach([this](SndBase& sound) { sounds.push_back({&sound, sound.GetSoundID()}); });
    if (direction == FromTail)
        std::reverse(sounds.begin(), sounds.end());
}

SoundWalk::SoundWalk(SndKernel& newKernel, EngineVector<KnownSound>&& newSounds)
    : kernel(newKernel)
    , list(nullptr)
    , newcomers(Visit)
    , sounds(std::move(newSounds))
    , numRemovedAtStart(newKernel.soundTable.GetNumRemoved())
{
}

SoundWalk::~SoundWalk()
{
    kernel.walkBuffers.GiveBack(std::move(sounds));
}

SndBase* SoundWalk::Next()
{
    while (place < sounds.size()) {
        FetchAhead();
        const KnownSound& known = sounds[place++];
        if (!IsStillThere(known) || (list && !list->Holds(*known.sound)))
            continue;
        if (newcomers == Visit || !kernel.IsNewcomer(*known.sound))
            return known.sound;
    }
    return nullptr;
}

// The sound first, and its file when the sound has come.
void SoundWalk::FetchAhead() const
{
    if (place + prefetchDistance < sounds.size())
        PrefetchSound(sounds[place + prefetchDistance].sound);
    constexpr std::size_t fileDistance = prefetchDistance / 2;
    if (place + fileDistance < sounds.size() && HaveAllStayed())
        PrefetchFile(sounds[place + fileDistance].sound->GetSndFile());
}

bool SoundWalk::HaveAllStayed() const
{
    return kernel.soundTable.GetNumRemoved() == numRemovedAtStart;
}

// As long as no sound has left the table, the pointers are as good as the ids.
bool SoundWalk::IsStillThere(const KnownSound& known) const
{
    return HaveAllStayed() || kernel.soundTable.Find(known.id) == known.sound;
}

} // namespace Quon
