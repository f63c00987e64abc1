#include "bench/kernel/CountedMalloc.h"

#include <atomic>
#include <cstddef>

namespace
{
std::atomic<std::uint64_t> allocations{0};
}

// The C library's own versions, for programs that replace malloc() and realloc().
extern "C" void* __libc_malloc(std::size_t);
extern "C" void* __libc_realloc(void*, std::size_t);

extern "C" __attribute__((visibility("default"))) void* malloc(std::size_t bytes)
{
    allocations.fetch_add(1, std::memory_order_relaxed);
    return __libc_malloc(bytes);
}

extern "C" __attribute__((visibility("default"))) void* realloc(void* block, std::size_t bytes)
{
    allocations.fetch_add(1, std::memory_order_relaxed);
    return __libc_realloc(block, bytes);
}

std::uint64_t Bench::CountAllocations()
{
    return allocations.load(std::memory_order_relaxed);
}
