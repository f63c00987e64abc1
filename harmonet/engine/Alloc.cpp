#include "harmonet/engine/Alloc.h"

#include <atomic>
#include <cstdlib>

namespace Quon
{

namespace
{

/// Publishes nothing: it is only ever counted and shown.
std::atomic<std::size_t> liveBlocks{0};

} // namespace

void* Alloc::New(unsigned int bytes)
{
    void* const block = std::malloc(bytes != 0 ? bytes : 1);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    liveBlocks.fetch_add(1, std::memory_order_relaxed);
    return block;
}

void Alloc::Delete(void* block)
{
    if (block != nullptr) {
        std::free(block);
        liveBlocks.fetch_sub(1, std::memory_order_relaxed);
    }
}

std::size_t Alloc::LiveBlocks()
{
    return liveBlocks.load(std::memory_order_relaxed);
}

} // namespace Quon
