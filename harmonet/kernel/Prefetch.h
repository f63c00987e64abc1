#pragma once

#include <cstddef>

namespace Quon
{

class SndBase;
class SndFile;

/// How many sounds ahead a walk fetches into the cache.
inline constexpr std::size_t prefetchDistance = 16;

/// Asks the processor to fetch what an update reads of a sound; the address need not be valid. The sounds of
/// a sorted list lie all over the memory, and waiting for each in turn is what a walk would cost otherwise.
inline void PrefetchSound(const SndBase* sound)
{
#if defined(__GNUC__)
    // The node of the scene graph lies in front of the sound, the reach of a positional sound behind it.
    constexpr std::ptrdiff_t cacheLine = 64;
    const auto* address = reinterpret_cast<const char*>(sound);
    for (std::ptrdiff_t line = -1; line <= 3; ++line)
        __builtin_prefetch(address + line * cacheLine);
#else
    static_cast<void>(sound);
#endif
}

/// The same for the file of a sound; null will do.
inline void PrefetchFile(const SndFile* file)
{
#if defined(__GNUC__)
    constexpr std::ptrdiff_t cacheLine = 64;
    __builtin_prefetch(file);
    __builtin_prefetch(reinterpret_cast<const char*>(file) + cacheLine);
#else
    static_cast<void>(file);
#endif
}

/// The same for the part of a sound that holds distance and multiplier.
inline void PrefetchRating(const SndBase* sound)
{
#if defined(__GNUC__)
    constexpr std::ptrdiff_t cacheLine = 64;
    __builtin_prefetch(reinterpret_cast<const char*>(sound) + cacheLine, 1);
    __builtin_prefetch(reinterpret_cast<const char*>(sound) + 2 * cacheLine);
#else
    static_cast<void>(sound);
#endif
}

/// The same for a walk that reads no more than the links and what the sounds are compared by.
inline void PrefetchLinks(const SndBase* sound)
{
#if defined(__GNUC__)
    __builtin_prefetch(sound);
#else
    static_cast<void>(sound);
#endif
}

} // namespace Quon
