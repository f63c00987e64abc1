#include "harmonet/voices/SoundRows.h"

#include "harmonet/engine/Alloc.h"
#include "harmonet/voices/NameIndex.h"

#include <algorithm>
#include <new>
#include <utility>

namespace Quon
{

void SoundRow::Reset(SndBase* sound) const
{
    SetPlace(Vector3());
    Flags() = 0;
    Marks() = RowMoved;
    Priority() = 0;
    DistSqr() = 0.0F;
    Multiplier() = 1.0F;
    StateTimeMs() = waitingStateTimeMs;
    Name() = NameIndex::none;
    Serial() = 0;
    MaxDistance() = 0.0F;
    SamplesLeft() = 0;
    RateHz() = 0;
    CountedSamples() = 0;
    List() = ListID::None;
    Reason() = SoundReason::None;
    block->sound[lane] = sound;
}

bool SoundRow::CanCount(const UpdateStep& step) const
{
    if (!HasMark(RowCounted) || HasAnyFlag(FlagPolyline | FlagLooping)) {
        return HasMark(RowCounted) && !HasAnyFlag(FlagPolyline);
    }
    const std::uint64_t leftMs = std::uint64_t{1000} * static_cast<std::uint32_t>(SamplesLeft());
    const std::uint64_t neededMs = std::uint64_t{step.minEmulationMs} + step.ms + 1;
    return !HasMark(RowOwnRate) && leftMs >= neededMs * RateHz() && CalcSamples(step) < SamplesLeft();
}

SoundBlock** SoundRows::blocks = nullptr;
std::uint32_t SoundRows::numBlocks = 0;
std::uint32_t SoundRows::capacity = 0;
std::uint32_t SoundRows::firstFree = noRow;
std::uint32_t SoundRows::numUsed = 0;

std::uint32_t SoundRows::Take(SndBase& sound)
{
    if (firstFree == noRow) {
        AddBlock();
    }
    const std::uint32_t row = firstFree;
    firstFree = At(row).Name();
    At(row).Reset(&sound);
    constexpr std::uint32_t step = SoundBlock::laneGroup;
    SoundBlock& block = *blocks[row / SoundBlock::numLanes];
    block.end = std::max(block.end, (row % SoundBlock::numLanes / step + 1) * step);
    ++block.numUsed;
    ++numUsed;
    return row;
}

// The serial shows remaining references to the row that the sound no longer exists.
void SoundRows::GiveBack(std::uint32_t row)
{
    At(row).Reset(nullptr);
    At(row).Name() = std::exchange(firstFree, row);
    SoundBlock& block = *blocks[row / SoundBlock::numLanes];
    block.end = --block.numUsed > 0 ? block.end : 0;
    --numUsed;
}

void SoundRows::AddBlock()
{
    constexpr std::uint32_t minCapacity = 16;
    if (numBlocks == capacity) {
        const std::uint32_t newCapacity = std::max(minCapacity, 2 * capacity);
        auto** grown = static_cast<SoundBlock**>(
            Alloc::New(static_cast<unsigned int>(newCapacity * sizeof(SoundBlock*))));
        std::copy_n(blocks, numBlocks, grown);
        Alloc::Delete(std::exchange(blocks, grown));
        capacity = newCapacity;
    }
    blocks[numBlocks] = new (Alloc::New(sizeof(SoundBlock))) SoundBlock;
    std::uint32_t row = ++numBlocks * SoundBlock::numLanes;
    for (std::uint32_t lane = 0; lane < SoundBlock::numLanes; ++lane) {
        At(--row).Reset(nullptr);
        At(row).Name() = std::exchange(firstFree, row);
    }
}

void SoundRows::Trim()
{
    if (numUsed > 0) {
        return;
    }
    std::for_each_n(blocks, numBlocks, Alloc::Delete);
    Alloc::Delete(std::exchange(blocks, nullptr));
    numBlocks = 0;
    capacity = 0;
    firstFree = noRow;
}

} // namespace Quon
