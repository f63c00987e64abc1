#pragma once

#if defined(__SSE__) || defined(_M_X64)
#include <xmmintrin.h>
#endif

#include <cstdint>

namespace Quon
{

/// During its lifetime, this thread's floating-point unit treats denormals as 0.
///
/// A decaying feedback ends in denormals and would stay there, and arithmetic with them can be a hundred
/// times slower. Supported on x86 and 64-bit ARM; it has no effect on other processors.
class FlushToZero
{
public:
    FlushToZero()
        : before(Read())
    {
        Write(before | flushBits);
    }
    FlushToZero(const FlushToZero&) = delete;
    FlushToZero& operator=(const FlushToZero&) = delete;
    ~FlushToZero() { Write(before); }

private:
#if defined(__SSE__) || defined(_M_X64)
    // Flush results to zero (bit 15) and treat denormal operands as zero (bit 6).
    static constexpr std::uint64_t flushBits = 0x8040;
    static std::uint64_t Read()
    {
        return _mm_getcsr();
    }
    static void Write(std::uint64_t word)
    {
        _mm_setcsr(static_cast<unsigned int>(word));
    }
#elif defined(__aarch64__)
    static constexpr std::uint64_t flushBits = std::uint64_t{1} << 24;
    static std::uint64_t Read()
    {
        std::uint64_t word;
        asm volatile("mrs %0, fpcr" : "=r"(word));
        return word;
    }
    static void Write(std::uint64_t word)
    {
        asm volatile("msr fpcr, %0" : : "r"(word));
    }
#else
    static constexpr std::uint64_t flushBits = 0;
    static std::uint64_t Read()
    {
        return 0;
    }
    static void Write(std::uint64_t) {}
#endif

    const std::uint64_t before;
};

} // namespace Quon
