#include "harmonet/voices/BlockPasses.h"

#include "harmonet/voices/Mask.h"

#include <algorithm>
#include <bit>

// Loops without branches, so that compilers turn them into vector instructions.

namespace Quon
{

namespace
{

using Lanes = SoundBlock::Column<std::uint32_t>;

// Computes distances and ranges. A sound that has not moved keeps its range, which other code may have set.
HARMONET_VECTOR_CLONES void Measure(SoundBlock& block, const Lanes& isActive, const UpdateStep& step)
{
    const std::uint32_t listenerMoved = Mask(step.listenerMoved);
    for (std::uint32_t lane = 0, end = block.end; lane < end; ++lane) {
        const std::uint32_t hasMoved = listenerMoved | Mask((block.marks[lane] & RowMoved) != 0);
        const std::uint32_t isMeasured = isActive[lane] & hasMoved & Mask((block.flags[lane] & Flag3D) != 0);
        const float distSqr = CalcDistSqr(block.x[lane], block.y[lane], block.z[lane], step.listener);
        const std::uint32_t range = CalcRange(distSqr, block.maxDistance[lane], block.marks[lane]);
        const std::uint32_t others = block.flags[lane] & ~(FlagDistLTMax | FlagDistGTMax);
        block.flags[lane] = Select(isMeasured, others | range, block.flags[lane]);
        block.distSqr[lane] = Select(isMeasured, distSqr, block.distSqr[lane]);
    }
}

} // namespace

HARMONET_VECTOR_CLONES void LookAtVirtual(const SoundBlock& block, VirtualLanes& found)
{
    std::uint32_t anyMayEnd = 0;
    std::uint32_t moved = 0;
    for (std::uint32_t lane = 0, end = block.end; lane < end; ++lane) {
        const std::uint32_t isVirtual = Mask(block.list[lane] == ListID::Emulated);
        const std::uint32_t isLoop = Mask((block.flags[lane] & (FlagPolyline | FlagLooping)) == FlagLooping);
        found.mayEnd[lane] = isVirtual & ~(isLoop & Mask((block.marks[lane] & RowCounted) != 0));
        anyMayEnd |= found.mayEnd[lane];
        moved |= isVirtual & block.marks[lane];
    }
    found.anyMayEnd = anyMayEnd != 0;
    found.anyMoved = (moved & RowMoved) != 0;
}

HARMONET_VECTOR_CLONES bool CountVirtual(SoundBlock& block, const UpdateStep& step, Lanes& isLeft)
{
    Lanes isActive;
    const std::uint32_t ms = step.ms;
    const std::uint32_t time = step.elapsedMs;
    std::uint32_t anyLeft = 0;
    for (std::uint32_t lane = 0, end = block.end; lane < end; ++lane) {
        constexpr std::uint32_t heldBack = Flag3D | FlagInPause;
        const std::uint32_t isVirtual = Mask(block.list[lane] == ListID::Emulated);
        const std::uint32_t active = isVirtual & Mask((block.flags[lane] & heldBack) != heldBack);
        const std::int32_t samples = CalcSamples(block.rateHz[lane], ms);
        const std::int32_t before = block.samplesLeft[lane];
        // A loop of the whole file stays at its end for one step if it ends exactly there.
        const std::int32_t length = block.countedSamples[lane];
        const std::uint32_t isLoop = Mask((block.marks[lane] & RowLoopsWhole) != 0) & Mask(samples < length);
        const std::uint32_t isDone = active & (isLoop | Mask(samples < before));
        const std::uint32_t rewinds = isDone & Mask(samples > before);
        block.samplesLeft[lane] = Select(isDone, before - samples + Select(rewinds, length, 0), before);
        block.marks[lane] |= RowRewound & rewinds;
        block.stateTimeMs[lane] = AddClamped(block.stateTimeMs[lane], time & isVirtual);
        isActive[lane] = active;
        isLeft[lane] = active & ~isDone;
        anyLeft |= isLeft[lane];
    }
    Measure(block, isActive, step);
    for (std::uint32_t lane = 0, end = block.end; lane < end; ++lane) {
        block.marks[lane] &= ~(RowMoved & isActive[lane]);
    }
    return anyLeft != 0;
}

HARMONET_VECTOR_CLONES HeardSounds LookAtHeard(
    std::span<SoundBlock* const> blocks, const UpdateStep& step, bool hasListener)
{
    const std::uint32_t barredFlags = FlagInPause | FlagPolyline | (hasListener ? 0U : Flag3D);
    const std::uint32_t listenerMoved = Mask(step.listenerMoved);
    std::uint32_t leaves = 0;
    std::uint32_t moved = 0;
    for (const SoundBlock* block : blocks) {
        for (std::uint32_t lane = 0, end = block->end; lane < end; ++lane) {
            const std::uint32_t flags = block->flags[lane];
            const std::uint32_t marks = block->marks[lane];
            const std::uint32_t isHeard = Mask(block->list[lane] == ListID::Playing);
            const std::uint32_t hasMoved = listenerMoved | Mask((marks & RowMoved) != 0);
            const float distSqr = CalcDistSqr(block->x[lane], block->y[lane], block->z[lane], step.listener);
            const std::uint32_t newRange = CalcRange(distSqr, block->maxDistance[lane], marks);
            const std::uint32_t range = Select(hasMoved & Mask((flags & Flag3D) != 0), newRange, flags);
            const std::uint32_t isBarred = (flags & barredFlags) | (marks & (RowReturns | RowNewcomer));
            leaves |= isHeard & (isBarred | (range & FlagDistGTMax));
            moved |= isHeard & marks;
        }
        // One that an observer has moved in this update needs its place first.
        block->ForEachUnplaced(
            [&](std::uint32_t lane) { leaves |= Mask(block->list[lane] == ListID::Playing); });
    }
    return {leaves == 0, (moved & RowMoved) != 0};
}

HARMONET_VECTOR_CLONES void UpdateHeard(SoundBlock& block, const UpdateStep& step)
{
    Lanes isHeard;
    const std::uint32_t ms = step.elapsedMs;
    for (std::uint32_t lane = 0, end = block.end; lane < end; ++lane) {
        isHeard[lane] = Mask(block.list[lane] == ListID::Playing);
        block.stateTimeMs[lane] = AddClamped(block.stateTimeMs[lane], ms & isHeard[lane]);
    }
    Measure(block, isHeard, step);
    for (std::uint32_t lane = 0, end = block.end; lane < end; ++lane) {
        const std::uint32_t inRange = (block.flags[lane] | FlagDistLTMax) & ~FlagDistGTMax;
        block.flags[lane] = Select(isHeard[lane], inRange, block.flags[lane]);
    }
}

HARMONET_VECTOR_CLONES CompetingSounds LookAtContenders(std::span<SoundBlock* const> blocks)
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

} // namespace Quon
