#pragma once

#include <cstddef>

namespace Quon
{

class SndBase;
class SndFile;

/// How many sounds ahead a walk fetches into the cache.
inline constexpr int prefetchDistance = 16;

/// Asks the processor to fetch what stands at an address, which need not be valid.
inline void PrefetchLine(const void* address)
{
#if defined(__GNUC__)
    __builtin_prefetch(address);
#else
    static_cast<void>(address);
#endif
}

/// The same for what an update reads of a sound. The sounds of a sorted list lie all over the memory, and
/// waiting for each in turn is what a walk would cost otherwise.
inline void PrefetchSound(const SndBase* sound)
{
    // What is read of a positional sound lies in front of the part that every sound has.
    constexpr std::ptrdiff_t cacheLine = 64;
    constexpr std::ptrdiff_t begin = -32;
    constexpr std::ptrdiff_t end = 104;
    const auto* address = reinterpret_cast<const char*>(sound);
    for (std::ptrdiff_t place = begin; place < end; place += cacheLine)
        PrefetchLine(address + place);
    PrefetchLine(address + end);
}

/// The same for the file of a sound; null will do.
inline void PrefetchFile(const SndFile* file)
{
    constexpr std::ptrdiff_t end = 48;
    PrefetchLine(file);
    PrefetchLine(reinterpret_cast<const char*>(file) + end);
}

/// The same for a walk that reads no more than the links and what the sounds are compared by.
inline void PrefetchLinks(const SndBase* sound)
{
    PrefetchLine(sound);
}

} // namespace Quon
