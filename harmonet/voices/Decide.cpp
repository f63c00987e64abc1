#include "harmonet/voices/Decide.h"

#include "harmonet/voices/BlockPasses.h"
#include "harmonet/voices/Growth.h"
#include "harmonet/voices/Importance.h"

#include <algorithm>

namespace Quon
{

namespace
{

constexpr float duplicateFactor = 1.3F;

using Item = ImportanceSort::Item;

/// A decision in progress.
struct Allocation
{
    std::span<SoundBlock* const> blocks;
    Decision& decision;

    SoundRow RowAt(std::uint32_t row) const { return Quon::RowAt(blocks, row); }
    std::uint64_t KeyOf(std::uint32_t row) const { return RowAt(row).GetWeightedKey(); }
    bool IsMusic(std::uint32_t row) const { return RowAt(row).HasAnyFlag(FlagMusic); }
    bool IsEligible(std::uint32_t row) const
    {
        constexpr std::uint32_t flags = FlagInPause | FlagPolyline | FlagDistLTMax;
        const SoundRow values = RowAt(row);
        return (values.Flags() & flags) == FlagDistLTMax && !values.HasMark(RowDelayed | RowNewcomer) &&
            values.StateTimeMs() >= settledMs;
    }
};

// Collects the eligible sounds of a sorted list, the best first, until there are `most`.
void CollectBest(const Allocation& allocation, std::span<const Item> ranked, bool hasMusic, std::size_t most,
    EngineVector<std::uint32_t>& best)
{
    best.clear();
    const auto collect = [&](std::span<const Item> items, bool isMusic) {
        for (const Item& item : items) {
            if (best.size() < most && allocation.IsMusic(item.row) == isMusic &&
                allocation.IsEligible(item.row)) {
                best.push_back(item.row);
            }
        }
    };
    if (hasMusic) {
        collect(ranked, true);
    }
    // From the tail, but the first of equals first.
    for (std::size_t end = ranked.size(); end > 0 && best.size() < most;) {
        std::size_t begin = end - 1;
        const std::uint64_t key = allocation.KeyOf(ranked[begin].row);
        while (begin > 0 && allocation.KeyOf(ranked[begin - 1].row) == key) {
            --begin;
        }
        collect(ranked.subspan(begin, end - begin), false);
        end = begin;
    }
}

// In the plain order a sound has lost to all like sounds before it. Returns the greatest multiplier.
float RateDuplicates(const Allocation& allocation, std::uint32_t nameBits)
{
    Decision& decision = allocation.decision;
    EngineVector<float>& factors = decision.factors;
    decision.lossesByName.assign(nameBits + std::size_t{1}, 0);
    std::uint32_t most = 0;
    for (const Item& item : decision.ranking) {
        const SoundRow row = allocation.RowAt(item.row);
        const std::uint32_t losses = decision.lossesByName[row.Name()]++;
        most = std::max(most, losses);
        if (losses == factors.size()) {
            factors.push_back(losses == 0 ? 1.0F : factors.back() * duplicateFactor);
        }
        row.Multiplier() = factors[losses];
    }
    return factors[most];
}

void ProtectYoung(const Allocation& allocation, std::span<const Item> playing)
{
    for (const Item& item : playing) {
        if (allocation.RowAt(item.row).StateTimeMs() < settledMs) {
            allocation.decision.chosen.push_back(item.row);
        }
    }
}

// Gives `numFree` channels to the best of the lists; returns the least important winner.
std::uint32_t ChooseBest(const Allocation& allocation, std::size_t numFree)
{
    Decision& decision = allocation.decision;
    std::array<std::span<const std::uint32_t>, numContenderLists> lists;
    std::ranges::copy(decision.best, lists.begin());
    std::uint32_t lastWinner = Decision::nobody;
    for (; numFree > 0; --numFree) {
        std::span<const std::uint32_t>* best = nullptr;
        for (std::span<const std::uint32_t>& list : lists) {
            if (!list.empty() &&
                (!best || allocation.KeyOf(best->front()) < allocation.KeyOf(list.front()))) {
                best = &list;
            }
        }
        if (!best) {
            break;
        }
        const std::uint32_t row = best->front();
        if (lastWinner == Decision::nobody || allocation.KeyOf(row) < allocation.KeyOf(lastWinner)) {
            lastWinner = row;
        }
        decision.chosen.push_back(row);
        *best = best->subspan(1);
    }
    std::ranges::transform(lists, decision.runnersUp.begin(),
        [](const auto& list) { return list.empty() ? Decision::nobody : list.front(); });
    return lastWinner;
}

/// The least important winner, to which the losers are compared.
struct Threshold
{
    std::uint32_t noWinner; ///< A mask.
    std::int32_t priority;
    float distance; ///< Weighted.
};

std::uint32_t Choose(std::uint32_t mask, SoundReason yes, std::uint32_t no)
{
    return Select(mask, static_cast<std::uint32_t>(yes), no);
}

// The reasons of the losers of a block.
HARMONET_VECTOR_CLONES void ExplainLosses(
    const SoundBlock& block, const Threshold& last, SoundReason* reasons)
{
    for (std::uint32_t lane = 0, end = block.end; lane < end; ++lane) {
        const std::int32_t priority = block.priority[lane];
        const std::uint32_t isLower = last.noWinner | Mask(priority < last.priority);
        const std::uint32_t isNearer =
            Mask(priority > last.priority) | Mask(block.distSqr[lane] < last.distance);
        const std::uint32_t isDuplicate = isNearer & Mask(block.multiplier[lane] > 1.0F);
        const std::uint32_t flags = block.flags[lane];
        const std::uint32_t marks = block.marks[lane];
        const std::uint32_t isSettling =
            Mask(block.stateTimeMs[lane] < settledMs) | Mask((marks & RowNewcomer) != 0);
        auto reason = static_cast<std::uint32_t>(SoundReason::LostByDistance);
        reason = Choose(isDuplicate, SoundReason::LostAsDuplicate, reason);
        reason = Choose(isLower, SoundReason::LostByPriority, reason);
        // These are not eligible.
        reason = Choose(isSettling, SoundReason::Settling, reason);
        reason = Choose(Mask((flags & FlagDistLTMax) == 0), SoundReason::BeyondReach, reason);
        reason = Choose(Mask((marks & RowDelayed) != 0), SoundReason::Delayed, reason);
        reason = Choose(Mask((flags & FlagInPause) != 0), SoundReason::Paused, reason);
        reason = Choose(Mask((flags & FlagPolyline) != 0), SoundReason::None, reason);
        const auto present = static_cast<std::uint32_t>(block.reason[lane]);
        reasons[lane] =
            static_cast<SoundReason>(Select(Mask(IsContender(block.list[lane])), reason, present));
    }
}

void ExplainAll(const Allocation& allocation, std::size_t numProtected, std::uint32_t lastWinner)
{
    Decision& decision = allocation.decision;
    Threshold last{Mask(lastWinner == Decision::nobody), 0, 0.0F};
    if (lastWinner != Decision::nobody) {
        const SoundRow row = allocation.RowAt(lastWinner);
        last.priority = row.Priority();
        last.distance = WeightDistance(row.DistSqr(), row.Multiplier());
    }
    SoundReason* reasons = decision.reasons.data();
    for (const SoundBlock* block : allocation.blocks) {
        ExplainLosses(*block, last, reasons);
        reasons += SoundBlock::numLanes;
    }
    for (const std::uint32_t& row : decision.chosen) {
        const bool isProtected = &row < decision.chosen.data() + numProtected;
        decision.reasons[row] = isProtected ? SoundReason::Protected : SoundReason::Won;
    }
}

} // namespace

void Decide(std::span<SoundBlock* const> blocks, const Contenders& contenders, int limit, Decision& decision)
{
    decision.chosen.clear();
    std::size_t count = 0;
    for (const std::span<const ListEntry> list : contenders) {
        count += list.size();
    }
    ResizeTo(decision.ranking, count);
    ResizeTo(decision.reasons, blocks.size() * SoundBlock::numLanes);
    const Allocation allocation{blocks, decision};
    const CompetingSounds crowd = LookAtContenders(blocks);
    if (!decision.ranking.empty()) {
        decision.sort.TakeCodes(blocks, crowd.range, ImportanceSort::ByDistance, 1.0F);
        decision.sort.Sort(contenders, decision.ranking);
        const float maxMultiplier = RateDuplicates(allocation, crowd.nameBits);
        decision.sort.TakeCodes(blocks, crowd.range, ImportanceSort::ByWeightedDistance, maxMultiplier);
    }
    std::span<Item> left = decision.ranking;
    std::array<std::span<Item>, numContenderLists> ranked;
    for (std::size_t list = 0; list < numContenderLists; ++list) {
        ranked[list] = left.first(contenders[list].size());
        decision.sort.Sort({&contenders[list], 1}, ranked[list]);
        left = left.subspan(ranked[list].size());
    }
    ProtectYoung(allocation, ranked[FromPlaying]);
    const std::size_t numProtected = decision.chosen.size();
    const auto numFree =
        static_cast<std::size_t>(std::max<std::int64_t>(limit - static_cast<std::int64_t>(numProtected), 0));
    for (std::size_t list = 0; list < numContenderLists; ++list) {
        const bool hasMusic = (crowd.flags & FlagMusic) != 0;
        CollectBest(allocation, ranked[list], hasMusic, numFree + 1, decision.best[list]);
    }
    const std::uint32_t lastWinner = ChooseBest(allocation, numFree);
    ExplainAll(allocation, numProtected, lastWinner);
}

} // namespace Quon
