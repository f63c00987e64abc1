#include "harmonet/engine/Alloc.h"

#include "harmonet/engine/HostMemory.h"

#include <atomic>
#include <cstdlib>

namespace Quon
{

namespace
{

/// Publishes no other data: a plain counter.
std::atomic<std::size_t> liveBlocks{0};

// Set while no other thread allocates.
HostMemory::TakeFunction takeBlock = std::malloc;
HostMemory::GiveFunction giveBlock = std::free;

} // namespace

void* Alloc::New(unsigned int bytes)
{
    void* const block = takeBlock(bytes != 0 ? bytes : 1);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    liveBlocks.fetch_add(1, std::memory_order_relaxed);
    return block;
}

void Alloc::Delete(void* block)
{
    if (block != nullptr) {
        giveBlock(block);
        liveBlocks.fetch_sub(1, std::memory_order_relaxed);
    }
}

void HostMemory::SetFunctions(TakeFunction take, GiveFunction give)
{
    takeBlock = take != nullptr ? take : std::malloc;
    giveBlock = give != nullptr ? give : std::free;
}

std::size_t Alloc::LiveBlocks()
{
    return liveBlocks.load(std::memory_order_relaxed);
}

} // namespace Quon
