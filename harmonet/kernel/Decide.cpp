#include "harmonet/kernel/Decide.h"

#include "harmonet/kernel/Growth.h"
#include "harmonet/kernel/Importance.h"

#include <algorithm>
#include <bit>

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

/// Iterates over the eligible sounds of one list, the best first.
class Candidates
{
public:
    /// `newRanked` is the sorted list.
    Candidates(const Allocation& newAllocation, std::span<const Item> newRanked, bool hasMusic)
        : allocation(newAllocation)
        , ranked(newRanked)
        , musicPlace(hasMusic ? 0 : newRanked.size())
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
            const std::uint32_t row = ranked[place++].row;
            if (!allocation.IsMusic(row) && allocation.IsEligible(row)) {
                best = row;
            }
        }
    }

private:
    std::uint32_t FindMusic()
    {
        while (musicPlace < ranked.size()) {
            const std::uint32_t row = ranked[musicPlace++].row;
            if (allocation.IsMusic(row) && allocation.IsEligible(row)) {
                return row;
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
        const std::uint64_t key = allocation.KeyOf(ranked[runBegin].row);
        while (runBegin > 0 && allocation.KeyOf(ranked[runBegin - 1].row) == key) {
            --runBegin;
        }
        place = runBegin;
        return true;
    }

    const Allocation& allocation;
    std::span<const Item> ranked; ///< The least important first.
    std::size_t musicPlace; ///< Start of the search for music, towards the tail.
    std::size_t runBegin;
    std::size_t runEnd;
    std::size_t place; ///< Position in the current run.
    std::uint32_t best = Decision::nobody;
};

/// What Decide() finds out about all contenders.
struct Crowd
{
    ImportanceRange range;
    std::uint32_t nameBits; ///< No name has other bits.
    std::uint32_t flags; ///< All that one of them has.
};

HARMONET_VECTOR_CLONES Crowd LookAt(std::span<SoundBlock* const> blocks)
{
    constexpr ImportanceRange none;
    auto [lowest, highest, nearest, farthest] = none;
    std::uint32_t nameBits = 0;
    std::uint32_t flags = 0;
    for (const SoundBlock* block : blocks) {
        for (std::uint32_t lane = 0, end = block->end; lane < end; ++lane) {
            const std::uint32_t mask = Mask(IsContender(block->list[lane]));
            const std::int32_t priority = block->priority[lane];
            const auto distance = std::bit_cast<std::int32_t>(block->distSqr[lane]);
            lowest = std::min(lowest, Select(mask, priority, none.lowest));
            highest = std::max(highest, Select(mask, priority, none.highest));
            nearest = std::min(nearest, Select(mask, distance, none.nearest));
            farthest = std::max(farthest, Select(mask, distance, none.farthest));
            nameBits |= block->name[lane] & mask;
            flags |= block->flags[lane] & mask;
        }
    }
    return {{lowest, highest, nearest, farthest}, nameBits, flags};
}

// In the plain order a sound has lost to all like sounds before it. Returns the greatest multiplier.
float RateDuplicates(const Allocation& allocation, std::uint32_t nameBits)
{
    Decision& decision = allocation.decision;
    decision.lossesByName.assign(nameBits + std::size_t{1}, 0);
    std::uint32_t* const lossesByName = decision.lossesByName.data();
    const float* factors = decision.factors.data();
    std::size_t numFactors = decision.factors.size();
    std::uint32_t most = 0;
    for (const Item& item : decision.ranking) {
        const SoundRow row = allocation.RowAt(item.row);
        const std::uint32_t losses = lossesByName[row.Name()]++;
        most = std::max(most, losses);
        if (losses == numFactors) {
            decision.factors.push_back(losses == 0 ? 1.0F : factors[losses - 1] * duplicateFactor);
            factors = decision.factors.data();
            ++numFactors;
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

/// Merges the candidates until the limit is reached; returns the least important winner.
std::uint32_t ChooseBest(
    const Allocation& allocation, std::span<Candidates, numContenderLists> lists, int limit)
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
        const std::uint32_t row = best->GetBest();
        if (lastWinner == Decision::nobody || allocation.KeyOf(row) < allocation.KeyOf(lastWinner)) {
            lastWinner = row;
        }
        decision.chosen.push_back(row);
        best->MoveOn();
    }
    for (std::size_t list = 0; list < numContenderLists; ++list) {
        decision.runnersUp[list] = lists[list].GetBest();
    }
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
    const auto [playing, emulated, waiting] = contenders;
    decision.chosen.clear();
    ResizeTo(decision.ranking, playing.size() + emulated.size() + waiting.size());
    ResizeTo(decision.reasons, blocks.size() * SoundBlock::numLanes);
    const Allocation allocation{blocks, decision};
    const Crowd crowd = LookAt(blocks);
    if (!decision.ranking.empty()) {
        decision.sort.TakeCodes(blocks, crowd.range, ImportanceSort::ByDistance, 1.0F);
        decision.sort.Sort(contenders, decision.ranking);
        const float maxMultiplier = RateDuplicates(allocation, crowd.nameBits);
        decision.sort.TakeCodes(blocks, crowd.range, ImportanceSort::ByWeightedDistance, maxMultiplier);
    }
    std::span<Item> left = decision.ranking;
    const auto rank = [&](std::span<const ListEntry> list) {
        const std::span<Item> ranked = left.first(list.size());
        left = left.subspan(list.size());
        decision.sort.Sort({&list, 1}, ranked);
        return Candidates(allocation, ranked, (crowd.flags & FlagMusic) != 0);
    };
    Candidates lists[] = {rank(playing), rank(emulated), rank(waiting)};
    ProtectYoung(allocation, std::span(decision.ranking).first(playing.size()));
    const std::size_t numProtected = decision.chosen.size();
    const std::uint32_t lastWinner = ChooseBest(allocation, lists, limit);
    ExplainAll(allocation, numProtected, lastWinner);
}

} // namespace Quon
