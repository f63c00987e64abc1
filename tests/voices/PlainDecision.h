#pragma once

#include "harmonet/voices/Decide.h"

#include <array>
#include <list>
#include <vector>

namespace Quon
{

/// A sound that has a channel or competes for one.
struct Contender
{
    std::int32_t priority = 0;
    float distSqr = 0.0F;
    std::uint32_t name = 0;
    std::uint32_t stateTimeMs = 1000;
    std::uint32_t flags = FlagDistLTMax; ///< SndFlags.
    std::uint32_t marks = 0; ///< RowMarks.
};
using ContenderCounts = std::array<std::size_t, numContenderLists>;

/// The kernel's decision in its plainest form: lists that are searched, compared pair by pair and sorted by
/// insertion. Slow, and shares nothing with Decide().
struct PlainDecision
{
    using List = std::list<std::uint32_t>;

    PlainDecision(std::vector<Contender> newContenders, const ContenderCounts& counts, int limit);

    std::vector<Contender> contenders;
    std::vector<float> multipliers;
    std::vector<std::uint32_t> chosen;
    std::array<List, numContenderLists> lists; ///< Without the chosen, the least important first.

private:
    bool IsLess(std::uint32_t left, std::uint32_t right, bool weighted = true) const;
    bool IsEligible(std::uint32_t number) const;
    bool IsMusic(std::uint32_t number) const;
    void RateDuplicates();
    void InsertSorted(List& list, std::uint32_t number) const;
    void Sort(List& list) const;
    std::uint32_t PickBest(List& list) const;
};

} // namespace Quon
