#include "harmonet/kernel/SoundRows.h"

#include "harmonet/engine/Alloc.h"
#include "harmonet/kernel/SndKernel.h"

#include <algorithm>
#include <memory>

namespace Quon
{

namespace
{

template<class T>
T* Grow(T* old, std::uint32_t count, std::uint32_t newCapacity)
{
    auto* grown = static_cast<T*>(Alloc::New(static_cast<unsigned int>(newCapacity * sizeof(T))));
    std::copy_n(old, count, grown);
    Alloc::Delete(old);
    return grown;
}

} // namespace

SoundRow** SoundRows::chunks = nullptr;
void** SoundRows::blocks = nullptr;
std::uint32_t* SoundRows::useCounts = nullptr;
std::uint32_t SoundRows::numChunks = 0;
std::uint32_t SoundRows::capacity = 0;
std::uint32_t SoundRows::firstFree = noRow;
std::uint32_t SoundRows::numUsed = 0;

std::uint32_t SoundRows::Take(SndBase& sound)
{
    if (firstFree == noRow) {
        AddChunk();
    }
    const std::uint32_t row = firstFree;
    firstFree = At(row).samplesLeft >= 0 ? static_cast<std::uint32_t>(At(row).samplesLeft) : noRow;
    At(row) = SoundRow();
    At(row).sound = &sound;
    ++useCounts[row / chunkRows];
    ++numUsed;
    return row;
}

// The serial shows remaining references to the row that the sound no longer exists.
void SoundRows::GiveBack(std::uint32_t row)
{
    At(row) = SoundRow();
    At(row).samplesLeft = firstFree != noRow ? static_cast<std::int32_t>(firstFree) : -1;
    firstFree = row;
    --useCounts[row / chunkRows];
    --numUsed;
    if (!theKernel) {
        Trim();
    }
}

void SoundRows::AddChunk()
{
    constexpr std::uint32_t minCapacity = 16;
    if (numChunks == capacity) {
        const std::uint32_t newCapacity = std::max(minCapacity, 2 * capacity);
        chunks = Grow(chunks, numChunks, newCapacity);
        blocks = Grow(blocks, numChunks, newCapacity);
        useCounts = Grow(useCounts, numChunks, newCapacity);
        capacity = newCapacity;
    }
    std::size_t space = (chunkRows + 1) * sizeof(SoundRow);
    void* place = blocks[numChunks] = Alloc::New(static_cast<unsigned int>(space));
    std::align(alignof(SoundRow), chunkRows * sizeof(SoundRow), place, space);
    chunks[numChunks] = static_cast<SoundRow*>(place);
    std::uninitialized_default_construct_n(chunks[numChunks], chunkRows);
    useCounts[numChunks] = 0;
    const std::uint32_t first = numChunks++ * chunkRows;
    for (std::uint32_t row = first + chunkRows; row-- > first;) {
        At(row).samplesLeft = firstFree != noRow ? static_cast<std::int32_t>(firstFree) : -1;
        firstFree = row;
    }
}

void SoundRows::Trim()
{
    if (numUsed > 0) {
        return;
    }
    std::for_each_n(blocks, numChunks, Alloc::Delete);
    Alloc::Delete(chunks);
    Alloc::Delete(blocks);
    Alloc::Delete(useCounts);
    chunks = nullptr;
    blocks = nullptr;
    useCounts = nullptr;
    numChunks = 0;
    capacity = 0;
    firstFree = noRow;
}

} // namespace Quon
