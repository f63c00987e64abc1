#pragma once

#include "harmonet/kernel/SndList.h"

namespace Quon
{

/// Takes the most important sounds that may be moved now out of one sorted list, one after the other.
///
/// Eligible is a sound that is neither in pause nor the head of a sound along a line, has no delay, is inside
/// its range, has been where it is for 200 ms, and was not started during the running update. Music beats any
/// other sound of the list, the least important music first; then come the sounds by importance, and of
/// equals the one nearest to the head.
///
/// Goes through the list once for all its picks: while the object lives the list changes by the picks alone.
class ChannelPicker
{
public:
    /// `newHorizon` is the start serial after which a sound is too new.
    ChannelPicker(SndList& newList, std::uint32_t newHorizon);

    /// Takes the next sound out of the list; null when there is none.
    SndBase* PickBest();

private:
    SndBase* FindMusic();
    SndBase* FindInRuns();
    void BeginRun();
    bool IsEligible(const SndBase& sound) const;

    SndList& list;
    std::uint32_t horizon;
    SndBase* musicPlace; ///< Where to look for music, towards the tail.
    SndBase* nextRunEnd; ///< The last sound of the run of equals behind the one at hand.
    SndBase* runPlace = nullptr; ///< Where to look in the run at hand, towards the tail.
    SndBase* runEnd = nullptr; ///< The last sound of that run.
};

} // namespace Quon
