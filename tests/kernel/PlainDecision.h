#pragma once

#include "harmonet/kernel/Decide.h"

#include <array>
#include <list>
#include <vector>

namespace Quon
{

/// The kernel's decision in its plainest form: lists that are searched, compared pair by pair and sorted by
/// insertion. Slow, and shares nothing with Decide() but the contenders.
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
