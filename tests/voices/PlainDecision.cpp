#include "tests/voices/PlainDecision.h"

#include <algorithm>

namespace Quon
{

PlainDecision::PlainDecision(std::vector<Contender> newContenders, const ContenderCounts& counts, int limit)
    : contenders(std::move(newContenders))
    , multipliers(contenders.size(), 1.0F)
{
    RateDuplicates();
    std::uint32_t number = 0;
    for (std::size_t i = 0; i < lists.size(); ++i) {
        for (std::size_t left = counts[i]; left > 0; --left) {
            lists[i].push_back(number++);
        }
        Sort(lists[i]);
    }
    lists[FromPlaying].remove_if([this](std::uint32_t young) {
        const bool isYoung = contenders[young].stateTimeMs < 200;
        if (isYoung) {
            chosen.push_back(young);
        }
        return isYoung;
    });
    std::array<std::uint32_t, numContenderLists> candidates;
    for (std::size_t i = 0; i < lists.size(); ++i) {
        candidates[i] = PickBest(lists[i]);
    }
    while (static_cast<int>(chosen.size()) < limit) {
        std::size_t best = lists.size();
        for (std::size_t i = 0; i < lists.size(); ++i) {
            if (candidates[i] != Decision::nobody &&
                (best == lists.size() || IsLess(candidates[best], candidates[i]))) {
                best = i;
            }
        }
        if (best == lists.size()) {
            break;
        }
        chosen.push_back(candidates[best]);
        candidates[best] = PickBest(lists[best]);
    }
    for (std::size_t i = 0; i < lists.size(); ++i) {
        if (candidates[i] != Decision::nobody) {
            InsertSorted(lists[i], candidates[i]);
        }
    }
}

bool PlainDecision::IsLess(std::uint32_t left, std::uint32_t right, bool weighted) const
{
    const auto distance = [&](std::uint32_t number) {
        const float distSqr = contenders[number].distSqr;
        return weighted && distSqr != 0.0F ? multipliers[number] * distSqr : distSqr;
    };
    if (contenders[left].priority != contenders[right].priority) {
        return contenders[left].priority < contenders[right].priority;
    }
    return distance(left) > distance(right);
}

bool PlainDecision::IsEligible(std::uint32_t number) const
{
    const Contender& contender = contenders[number];
    const bool isBarred = (contender.flags & (FlagInPause | FlagPolyline)) != 0 ||
        (contender.marks & (RowDelayed | RowNewcomer)) != 0;
    return (contender.flags & FlagDistLTMax) != 0 && !isBarred && contender.stateTimeMs >= 200;
}

bool PlainDecision::IsMusic(std::uint32_t number) const
{
    return (contenders[number].flags & FlagMusic) != 0;
}

void PlainDecision::RateDuplicates()
{
    for (std::uint32_t later = 0; later < contenders.size(); ++later) {
        for (std::uint32_t earlier = 0; earlier < later; ++earlier) {
            if (contenders[earlier].name == contenders[later].name) {
                multipliers[IsLess(earlier, later, false) ? earlier : later] *= 1.3F;
            }
        }
    }
}

void PlainDecision::InsertSorted(List& list, std::uint32_t number) const
{
    list.insert(
        std::ranges::find_if(list, [&](std::uint32_t other) { return !IsLess(other, number); }), number);
}

void PlainDecision::Sort(List& list) const
{
    // Equal contenders keep their order.
    List sorted;
    for (; !list.empty(); list.pop_back()) {
        InsertSorted(sorted, list.back());
    }
    list = sorted;
}

std::uint32_t PlainDecision::PickBest(List& list) const
{
    auto best = list.end();
    for (auto place = list.begin(); place != list.end(); ++place) {
        if (!IsEligible(*place)) {
            continue;
        }
        if (best == list.end() || IsMusic(*place) || IsLess(*best, *place)) {
            best = place;
        }
        if (IsMusic(*best)) {
            break;
        }
    }
    if (best == list.end()) {
        return Decision::nobody;
    }
    const std::uint32_t number = *best;
    list.erase(best);
    return number;
}

} // namespace Quon
