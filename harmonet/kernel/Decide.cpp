#include "harmonet/kernel/Decide.h"

#include "harmonet/kernel/Growth.h"
#include "harmonet/kernel/Importance.h"

#include <algorithm>
#include <limits>

namespace Quon
{

namespace
{

constexpr float duplicateFactor = 1.3F;

bool IsMusic(const Contender& contender)
{
    return (contender.traits & TraitMusic) != 0;
}

bool IsEligible(const Contender& contender)
{
    constexpr unsigned int barred = TraitPaused | TraitLine | TraitDelayed | TraitNewcomer;
    return (contender.traits & (barred | TraitInRange)) == TraitInRange && contender.stateTimeMs >= settledMs;
}

SoundReason WhyIneligible(const Contender& contender)
{
    if (contender.traits & TraitLine) {
        return SoundReason::None;
    }
    if (contender.traits & TraitPaused) {
        return SoundReason::Paused;
    }
    if (contender.traits & TraitDelayed) {
        return SoundReason::Delayed;
    }
    return contender.traits & TraitInRange ? SoundReason::Settling : SoundReason::BeyondReach;
}

/// A decision in progress.
struct Allocation
{
    std::span<const Contender> contenders;
    Decision& decision;

    std::uint64_t KeyOf(std::uint32_t number) const { return decision.keys[number]; }

    void Choose(std::uint32_t number, SoundReason reason)
    {
        decision.chosen.push_back(number);
        decision.reasons[number] = reason;
    }
};

/// Iterates over the eligible sounds of one list, the best first.
class Candidates
{
public:
    /// `newListed` are the contenders of the list; `newRanked` is their sorted order.
    Candidates(const Allocation& newAllocation, std::span<const Contender> newListed,
        std::span<const ImportanceSort::Item> newRanked)
        : allocation(newAllocation)
        , ranked(newRanked)
        , musicPlace(std::ranges::any_of(newListed, IsMusic) ? 0 : newRanked.size())
        , runBegin(newRanked.size())
        , runEnd(newRanked.size())
        , place(newRanked.size())
    {
        MoveOn();
    }

    std::uint32_t GetBest() const { return best; }
    std::uint64_t GetKey() const { return allocation.KeyOf(best); }

    void MoveOn()
    {
        best = FindMusic();
        while (best == Decision::nobody && (place < runEnd || BeginRun())) {
            const std::uint32_t number = ranked[place++].number;
            if (IsEligible(number, false)) {
                best = number;
            }
        }
    }

private:
    bool IsEligible(std::uint32_t number, bool music) const
    {
        const Contender& contender = allocation.contenders[number];
        return IsMusic(contender) == music && Quon::IsEligible(contender);
    }

    std::uint32_t FindMusic()
    {
        while (musicPlace < ranked.size()) {
            const std::uint32_t number = ranked[musicPlace++].number;
            if (IsEligible(number, true)) {
                return number;
            }
        }
        return Decision::nobody;
    }

    /// Moves to the next run of equals towards the head; returns false if there is none.
    bool BeginRun()
    {
        if (runBegin == 0) {
            return false;
        }
        runEnd = runBegin--;
        const std::uint64_t key = allocation.KeyOf(ranked[runBegin].number);
        while (runBegin > 0 && allocation.KeyOf(ranked[runBegin - 1].number) == key) {
            --runBegin;
        }
        place = runBegin;
        return true;
    }

    const Allocation& allocation;
    std::span<const ImportanceSort::Item> ranked; ///< The least important first.
    std::size_t musicPlace; ///< Start of the search for music, towards the tail.
    std::size_t runBegin;
    std::size_t runEnd;
    std::size_t place; ///< Position in the current run.
    std::uint32_t best = Decision::nobody;
};

// The most important first, by priority and plain distance.
void RankPlainly(std::span<const Contender> contenders, Decision& decision)
{
    std::uint64_t* key = decision.keys.data();
    std::uint32_t lastName = 0;
    for (const Contender& contender : contenders) {
        *key++ = ~ImportanceKey(contender.priority, contender.distSqr);
        lastName = std::max(lastName, contender.name);
    }
    decision.lossesByName.assign(lastName + std::size_t{1}, 0);
    decision.sort.Sort(decision.ranking, decision.keys, 0);
}

// In that order a sound has lost to all like sounds before it. Leaves the keys with the weighted distances.
void RateDuplicates(std::span<const Contender> contenders, Decision& decision)
{
    std::uint32_t* const lossesByName = decision.lossesByName.data();
    float* const multipliers = decision.multipliers.data();
    std::uint64_t* const keys = decision.keys.data();
    for (const ImportanceSort::Item& item : decision.ranking) {
        const Contender& contender = contenders[item.number];
        const std::uint32_t losses = lossesByName[contender.name]++;
        while (decision.factors.size() <= losses) {
            decision.factors.push_back(
                decision.factors.empty() ? 1.0F : decision.factors.back() * duplicateFactor);
        }
        const float multiplier = decision.factors[losses];
        multipliers[item.number] = multiplier;
        keys[item.number] = ImportanceKey(contender.priority, WeightDistance(contender.distSqr, multiplier));
    }
}

void ProtectYoung(Allocation& allocation, std::span<const ImportanceSort::Item> playing)
{
    for (const ImportanceSort::Item& item : playing) {
        if (allocation.contenders[item.number].stateTimeMs < settledMs) {
            allocation.Choose(item.number, SoundReason::Protected);
        }
    }
}

/// Sets the reasons of the losers, compared with the least important winner.
void ExplainLosses(Allocation& allocation, std::uint32_t lastWinner)
{
    Decision& decision = allocation.decision;
    const bool anyWon = lastWinner != Decision::nobody;
    const std::int32_t priority =
        anyWon ? allocation.contenders[lastWinner].priority : std::numeric_limits<std::int32_t>::max();
    const float distance = anyWon
        ? WeightDistance(allocation.contenders[lastWinner].distSqr, decision.multipliers[lastWinner])
        : 0.0F;
    for (std::size_t number = 0; number < allocation.contenders.size(); ++number) {
        const Contender& contender = allocation.contenders[number];
        SoundReason& reason = decision.reasons[number];
        if (reason != SoundReason::None) {
            continue;
        }
        if (!IsEligible(contender)) {
            reason = WhyIneligible(contender);
            continue;
        }
        // Branchless: the outcome is unpredictable.
        const bool isLower = !anyWon | (contender.priority < priority);
        const bool isNearer = (contender.priority > priority) | (contender.distSqr < distance);
        const bool isDuplicate = isNearer & (decision.multipliers[number] > 1.0F);
        const SoundReason lostToEqual =
            isDuplicate ? SoundReason::LostAsDuplicate : SoundReason::LostByDistance;
        reason = isLower ? SoundReason::LostByPriority : lostToEqual;
    }
}

/// Merges the candidates until the limit is reached.
void ChooseBest(Allocation& allocation, std::span<Candidates, numContenderLists> lists, int limit)
{
    Decision& decision = allocation.decision;
    std::uint32_t lastWinner = Decision::nobody;
    while (static_cast<std::int64_t>(decision.chosen.size()) < limit) {
        Candidates* best = nullptr;
        for (Candidates& list : lists) {
            if (list.GetBest() != Decision::nobody && (!best || best->GetKey() < list.GetKey())) {
                best = &list;
            }
        }
        if (!best) {
            break;
        }
        const std::uint32_t number = best->GetBest();
        if (lastWinner == Decision::nobody || allocation.KeyOf(number) < allocation.KeyOf(lastWinner)) {
            lastWinner = number;
        }
        allocation.Choose(number, SoundReason::Won);
        best->MoveOn();
    }
    for (std::size_t list = 0; list < numContenderLists; ++list) {
        decision.runnersUp[list] = lists[list].GetBest();
    }
    ExplainLosses(allocation, lastWinner);
}

} // namespace

void Decide(
    std::span<const Contender> contenders, const ContenderCounts& counts, int limit, Decision& decision)
{
    decision.chosen.clear();
    ResizeTo(decision.ranking, contenders.size());
    ResizeTo(decision.multipliers, contenders.size());
    ResizeTo(decision.keys, contenders.size());
    decision.reasons.assign(contenders.size(), SoundReason::None);
    RankPlainly(contenders, decision);
    RateDuplicates(contenders, decision);
    Allocation allocation{contenders, decision};

    const auto rank = [&](std::size_t first, std::size_t count) {
        const std::span ranked = std::span(decision.ranking).subspan(first, count);
        decision.sort.Sort(
            ranked, std::span(decision.keys).subspan(first, count), static_cast<std::uint32_t>(first));
        return Candidates(allocation, contenders.subspan(first, count), ranked);
    };
    const std::size_t firstWaiting = counts[FromPlaying] + counts[FromEmulated];
    Candidates lists[] = {rank(0, counts[FromPlaying]), rank(counts[FromPlaying], counts[FromEmulated]),
        rank(firstWaiting, counts[FromWaiting])};
    ProtectYoung(allocation, std::span(decision.ranking).first(counts[FromPlaying]));
    ChooseBest(allocation, lists, limit);
}

} // namespace Quon
