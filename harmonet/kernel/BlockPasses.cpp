// The parts of a full update that go through the rows of all sounds in memory order. Their loops have no
// branches, so that compilers turn them into vector instructions.

#include "harmonet/kernel/SndKernel.h"

namespace Quon
{

// Gets the positions of the nodes that have moved, in their approximate memory order instead of the order of
// the lists. This only updates the rows: a sound that an observer moves later is queried again.
SndKernel::VirtualSounds SndKernel::UpdatePlaces(const UpdateStep& step)
{
    VirtualSounds all;
    // By index, since blocks may be added meanwhile.
    for (std::size_t number = 0; number < SoundRows::GetBlocks().size(); ++number) {
        SoundBlock& block = *SoundRows::GetBlocks()[number];
        SndBase::UpdatePlaces(block);
        PrepareBlock(block, step, all);
    }
    return all;
}

// Starts counting where possible, and finds out about the virtual sounds of a block. Only those that are no
// counted loops need a closer look.
HARMONET_VECTOR_CLONES void SndKernel::PrepareBlock(
    SoundBlock& block, const UpdateStep& step, VirtualSounds& all)
{
    SoundBlock::Column<std::uint32_t> mayEnd;
    std::uint32_t anyMayEnd = 0;
    std::uint32_t moved = 0;
    for (std::uint32_t lane = 0, end = block.end; lane < end; ++lane) {
        const std::uint32_t isVirtual = Mask(block.list[lane] == ListID::Emulated);
        const std::uint32_t isLoop = Mask((block.flags[lane] & (FlagPolyline | FlagLooping)) == FlagLooping);
        mayEnd[lane] = isVirtual & ~(isLoop & Mask((block.marks[lane] & RowCounted) != 0));
        anyMayEnd |= mayEnd[lane];
        moved |= isVirtual & block.marks[lane];
    }
    all.anyMoved = all.anyMoved || (moved & RowMoved) != 0;
    for (std::uint32_t lane = 0, end = block.end; anyMayEnd && lane < end; ++lane) {
        if (mayEnd[lane] == 0) {
            continue;
        }
        const SoundRow row(block, lane);
        row.GetSound()->StartCounting();
        all.onlyCount = all.onlyCount && (row.IsHeldBack() || row.CanCount(step));
    }
}

// Advances the virtual sounds of a block, all of which can be counted.
HARMONET_VECTOR_CLONES void SndKernel::CountBlock(SoundBlock& block, const UpdateStep& step) const
{
    SoundBlock::Column<std::uint32_t> isActive;
    SoundBlock::Column<std::uint32_t> isLeft;
    const std::uint32_t ms = step.ms;
    const auto time = static_cast<std::uint32_t>(elapsed);
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
    MeasureBlock(block, isActive, step);
    for (std::uint32_t lane = 0, end = block.end; lane < end; ++lane) {
        block.marks[lane] &= ~(RowMoved & isActive[lane]);
    }
    for (std::uint32_t lane = 0, end = block.end; anyLeft && lane < end; ++lane) {
        if (isLeft[lane]) {
            block.sound[lane]->CountLoop(CalcSamples(block.rateHz[lane], step.ms));
        }
    }
}

// Computes distances and ranges. A sound that has not moved keeps its range, which other code may have set.
HARMONET_VECTOR_CLONES void SndKernel::MeasureBlock(
    SoundBlock& block, const SoundBlock::Column<std::uint32_t>& isActive, const UpdateStep& step)
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

// Finds out whether any sound with a channel can leave the playing list in this update, which can call
// observers.
HARMONET_VECTOR_CLONES SndKernel::HeardSounds SndKernel::LookAtHeard(const UpdateStep& step) const
{
    const std::uint32_t barredFlags = FlagInPause | FlagPolyline | (activeMicrophone ? 0U : Flag3D);
    const std::uint32_t listenerMoved = Mask(step.listenerMoved);
    std::uint32_t leaves = 0;
    std::uint32_t moved = 0;
    for (const SoundBlock* block : SoundRows::GetBlocks()) {
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

// UpdatePlaying() if all stay, with as much as possible in memory order.
HARMONET_VECTOR_CLONES void SndKernel::UpdateStaying(const UpdateStep& step, bool anyMoved)
{
    if (step.listenerMoved || anyMoved) {
        GetList(ListID::Playing).ForgetOrder();
    }
    const auto ms = static_cast<std::uint32_t>(elapsed);
    for (SoundBlock* block : SoundRows::GetBlocks()) {
        SoundBlock::Column<std::uint32_t> isHeard;
        for (std::uint32_t lane = 0, end = block->end; lane < end; ++lane) {
            isHeard[lane] = Mask(block->list[lane] == ListID::Playing);
            block->stateTimeMs[lane] = AddClamped(block->stateTimeMs[lane], ms & isHeard[lane]);
        }
        MeasureBlock(*block, isHeard, step);
        for (std::uint32_t lane = 0, end = block->end; lane < end; ++lane) {
            const std::uint32_t inRange = (block->flags[lane] | FlagDistLTMax) & ~FlagDistGTMax;
            block->flags[lane] = Select(isHeard[lane], inRange, block->flags[lane]);
        }
    }
    if (!anyMoved) {
        return;
    }
    for (const SndList::Entry& entry : GetList(ListID::Playing).GetEntries()) {
        const SoundRow row = entry.GetRow();
        if (row.HasMark(RowMoved) && row.HasAnyFlag(Flag3D) && !entry.IsStale()) {
            SndBase::SendMove(row);
        }
    }
}

} // namespace Quon
