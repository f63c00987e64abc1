#include "harmonet/kernel/SoundWalk.h"

#include "harmonet/kernel/Prefetch.h"
#include "harmonet/kernel/SndKernel.h"

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

SoundWalk::SoundWalk(SndKernel& newKernel, SndList& newList, Direction newDirection, Newcomers newNewcomers)
    : kernel(newKernel)
    , list(&newList)
    , direction(newDirection)
    , newcomers(newNewcomers)
    , followsList(true)
    , cursor(newDirection == FromHead ? newList.GetHead() : newList.GetTail())
    , numRemovedAtStart(newKernel.soundTable.GetNumRemoved())
{
    list->Learn();
    list->AddWalk(*this);
}

SoundWalk::SoundWalk(SndKernel& newKernel, EngineVector<KnownSound>&& newSounds)
    : kernel(newKernel)
    , list(nullptr)
    , newcomers(Visit)
    , followsList(false)
    , sounds(std::move(newSounds))
    , numRemovedAtStart(newKernel.soundTable.GetNumRemoved())
{
}

SoundWalk::~SoundWalk()
{
    if (followsList)
        list->RemoveWalk(*this);
    else
        kernel.walkBuffers.GiveBack(std::move(sounds));
}

SndBase* SoundWalk::Next()
{
    while (SndBase* sound = followsList ? NextOfList() : NextTakenDown()) {
        if (newcomers == Visit || !kernel.IsNewcomer(*sound))
            return sound;
    }
    return nullptr;
}

SndBase* SoundWalk::NextOfList()
{
    SndBase* sound = cursor;
    if (sound) {
        FetchAhead(*sound);
        cursor = GetNeighbour(*sound);
    }
    return sound;
}

SndBase* SoundWalk::NextTakenDown()
{
    while (place < sounds.size()) {
        const KnownSound& known = sounds[place++];
        if (IsStillThere(known) && (!list || list->Holds(*known.sound)))
            return known.sound;
    }
    return nullptr;
}

// The list is about to change.
void SoundWalk::TakeDown()
{
    sounds = kernel.walkBuffers.Take();
    for (SndBase* sound = cursor; sound; sound = GetNeighbour(*sound))
        sounds.push_back({sound, sound->GetSoundID()});
    followsList = false;
}

SndBase* SoundWalk::GetNeighbour(const SndBase& sound) const
{
    return direction == FromHead ? list->GetNext(sound) : list->GetPrevious(sound);
}

// The sound first, and its file when the sound has come.
void SoundWalk::FetchAhead(const SndBase& sound) const
{
    constexpr int soundDistance = prefetchDistance;
    constexpr int fileDistance = soundDistance / 2;
    const int sign = direction == FromHead ? 1 : -1;
    PrefetchSound(list->GetKnownNear(sound, sign * soundDistance));
    if (const SndBase* ahead = list->GetKnownNear(sound, sign * fileDistance))
        PrefetchFile(ahead->GetSndFile());
}

// As long as no sound has left the table, the pointers are as good as the ids.
bool SoundWalk::IsStillThere(const KnownSound& known) const
{
    return kernel.soundTable.GetNumRemoved() == numRemovedAtStart ||
        kernel.soundTable.Find(known.id) == known.sound;
}

} // namespace Quon
