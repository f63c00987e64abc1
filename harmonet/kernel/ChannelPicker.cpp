#include "harmonet/kernel/ChannelPicker.h"

namespace Quon
{

namespace
{

// A sound that has changed between having a channel and being emulated stays as it is for this long.
constexpr unsigned long settledMs = 200;

} // namespace

ChannelPicker::ChannelPicker(SndList& newList, std::uint32_t newHorizon)
    : list(newList)
    , horizon(newHorizon)
    , musicPlace(newList.HasMusic() ? newList.GetHead() : nullptr)
    , nextRunEnd(newList.GetTail())
{
}

SndBase* ChannelPicker::PickBest()
{
    SndBase* best = FindMusic();
    if (!best)
        best = FindInRuns();
    if (best)
        list.Remove(*best);
    return best;
}

// All music is found before the first other sound is picked, so that the walk over the runs starts from the
// tail as it is then.
SndBase* ChannelPicker::FindMusic()
{
    if (!musicPlace)
        return nullptr;
    for (SndBase* sound = musicPlace; sound; sound = list.GetNext(*sound)) {
        if (sound->IsMusic() && IsEligible(*sound)) {
            musicPlace = list.GetNext(*sound);
            if (!musicPlace)
                nextRunEnd = list.GetPrevious(*sound);
            return sound;
        }
    }
    musicPlace = nullptr;
    nextRunEnd = list.GetTail();
    return nullptr;
}

SndBase* ChannelPicker::FindInRuns()
{
    while (true) {
        while (runPlace) {
            SndBase* sound = runPlace;
            runPlace = sound != runEnd ? list.GetNext(*sound) : nullptr;
            if (IsEligible(*sound))
                return sound;
        }
        if (!nextRunEnd)
            return nullptr;
        BeginRun();
    }
}

void ChannelPicker::BeginRun()
{
    runEnd = nextRunEnd;
    runPlace = runEnd;
    SndBase* before = list.GetPrevious(*runPlace);
    while (before && !(*before < *runPlace)) {
        runPlace = before;
        before = list.GetPrevious(*runPlace);
    }
    nextRunEnd = before;
}

bool ChannelPicker::IsEligible(const SndBase& sound) const
{
    return !sound.HasAnyFlag(FlagInPause | FlagPolyline) && sound.IsDistLTMax() && sound.GetDelay() <= 0 &&
        sound.GetStateTime() >= settledMs && !IsAfter(sound.GetStartSerial(), horizon);
}

} // namespace Quon
