#pragma once

#include <cstdint>

namespace Quon
{

class SndBase;
class SndFile;

/// How many sounds ahead a walk fetches into the cache.
inline constexpr int prefetchDistance = 16;

/// Asks the processor to fetch the cache line at an address, which need not be valid.
inline void PrefetchLine(std::uintptr_t address)
{
#if defined(__GNUC__)
    // NOLINTNEXTLINE(performance-no-int-to-ptr): it may point outside of any object.
    __builtin_prefetch(reinterpret_cast<const void*>(address));
#else
    static_cast<void>(address);
#endif
}

inline void PrefetchLine(const void* address)
{
    PrefetchLine(reinterpret_cast<std::uintptr_t>(address));
}

/// The same for what an update reads of a sound; null will do. The sounds of a sorted list lie all over the
/// memory, and waiting for each in turn is what a walk would cost otherwise.
inline void PrefetchSound(const SndBase* sound)
{
    // What is read of a positional sound begins in front of the part that every sound has.
    constexpr std::uintptr_t cacheLine = 64;
    constexpr std::uintptr_t bytesInFront = 32;
    constexpr std::uintptr_t bytes = 136;
    const std::uintptr_t begin = reinterpret_cast<std::uintptr_t>(sound) - bytesInFront;
    for (std::uintptr_t place = 0; place < bytes; place += cacheLine)
        PrefetchLine(begin + place);
    PrefetchLine(begin + bytes);
}

/// The same for the file of a sound; null will do.
inline void PrefetchFile(const SndFile* file)
{
    constexpr std::uintptr_t bytes = 48;
    const auto begin = reinterpret_cast<std::uintptr_t>(file);
    PrefetchLine(begin);
    PrefetchLine(begin + bytes);
}

} // namespace Quon
