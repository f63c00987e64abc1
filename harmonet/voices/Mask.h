#pragma once

#include <bit>
#include <cstdint>

// Selection without branches, which compilers turn into vector instructions.

/// Compiles a function twice, for processors with AVX2 and for all others; the loader selects one. Both
/// compute the same. Sanitizers do not support it.
#if defined(__x86_64__) && defined(__GLIBC__) && defined(__GNUC__) && !defined(__clang__) &&                 \
    !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
#define HARMONET_VECTOR_CLONES [[gnu::target_clones("avx2", "default")]]
#else
#define HARMONET_VECTOR_CLONES
#endif

namespace Quon
{

/// All bits if the condition holds, otherwise none.
constexpr std::uint32_t Mask(bool condition)
{
    return 0U - static_cast<std::uint32_t>(condition);
}

constexpr std::uint32_t Select(std::uint32_t mask, std::uint32_t yes, std::uint32_t no)
{
    return (yes & mask) | (no & ~mask);
}

constexpr std::int32_t Select(std::uint32_t mask, std::int32_t yes, std::int32_t no)
{
    return static_cast<std::int32_t>(
        Select(mask, static_cast<std::uint32_t>(yes), static_cast<std::uint32_t>(no)));
}

constexpr float Select(std::uint32_t mask, float yes, float no)
{
    return std::bit_cast<float>(
        Select(mask, std::bit_cast<std::uint32_t>(yes), std::bit_cast<std::uint32_t>(no)));
}

} // namespace Quon
