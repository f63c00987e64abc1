#pragma once

/// The compiler-dependent parts of vectorised code: the vector types, their operations that are not
/// operators, and forced inlining. No other file of the library uses extensions for these, except the kernels
/// for AVX2, which are built only with a compiler that has them. A compiler without vector types uses
/// `PlainLanes` instead, with the same operators; so does any compiler with HARMONET_PLAIN_LANES defined.

#include <cstddef>

#if defined(__GNUC__)
#define HARMONET_ALWAYS_INLINE __attribute__((always_inline)) inline
#elif defined(_MSC_VER)
#define HARMONET_ALWAYS_INLINE __forceinline
#else
#define HARMONET_ALWAYS_INLINE inline
#endif

namespace Quon
{

/// `count` numbers, processed in plain loops, for any compiler. An aggregate: `PlainLanes<float, 4>{1, 2, 3,
/// 4}`. A scalar operand is used in every lane.
template<class Number, int count>
struct PlainLanes
{
    Number lanes[count];

    HARMONET_ALWAYS_INLINE constexpr Number& operator[](std::size_t lane) { return lanes[lane]; }

    HARMONET_ALWAYS_INLINE constexpr Number operator[](std::size_t lane) const { return lanes[lane]; }

    /// Lane i of the result is operation(a[i], b[i]).
    template<class Operation>
    HARMONET_ALWAYS_INLINE static constexpr PlainLanes Each(
        const PlainLanes& a, const PlainLanes& b, Operation operation)
    {
        PlainLanes result{};
        for (int i = 0; i < count; ++i) {
            result.lanes[i] = operation(a.lanes[i], b.lanes[i]);
        }
        return result;
    }

    HARMONET_ALWAYS_INLINE static constexpr PlainLanes Broadcast(Number value)
    {
        PlainLanes result{};
        for (Number& lane : result.lanes) {
            lane = value;
        }
        return result;
    }

    friend HARMONET_ALWAYS_INLINE constexpr PlainLanes operator+(const PlainLanes& a, const PlainLanes& b)
    {
        return Each(a, b, [](Number x, Number y) { return x + y; });
    }

    friend HARMONET_ALWAYS_INLINE constexpr PlainLanes operator-(const PlainLanes& a, const PlainLanes& b)
    {
        return Each(a, b, [](Number x, Number y) { return x - y; });
    }

    friend HARMONET_ALWAYS_INLINE constexpr PlainLanes operator*(const PlainLanes& a, const PlainLanes& b)
    {
        return Each(a, b, [](Number x, Number y) { return x * y; });
    }

    friend HARMONET_ALWAYS_INLINE constexpr PlainLanes operator*(const PlainLanes& a, Number b)
    {
        return a * Broadcast(b);
    }

    friend HARMONET_ALWAYS_INLINE constexpr PlainLanes operator*(Number a, const PlainLanes& b)
    {
        return Broadcast(a) * b;
    }

    friend HARMONET_ALWAYS_INLINE constexpr PlainLanes operator-(const PlainLanes& a)
    {
        return Each(a, a, [](Number x, Number) { return -x; });
    }

    HARMONET_ALWAYS_INLINE constexpr PlainLanes& operator+=(const PlainLanes& other)
    {
        return *this = *this + other;
    }

    friend HARMONET_ALWAYS_INLINE constexpr PlainLanes operator|(const PlainLanes& a, const PlainLanes& b)
    {
        return Each(a, b, [](Number x, Number y) { return x | y; });
    }

    friend HARMONET_ALWAYS_INLINE constexpr PlainLanes operator&(const PlainLanes& a, Number b)
    {
        return Each(a, a, [b](Number x, Number) { return x & b; });
    }

    friend HARMONET_ALWAYS_INLINE constexpr PlainLanes operator<<(const PlainLanes& a, int bits)
    {
        return Each(a, a, [bits](Number x, Number) { return x << bits; });
    }
};

/// The minimum of each lane; `b` where `a` is NaN.
template<int count>
HARMONET_ALWAYS_INLINE PlainLanes<float, count> Minimum(
    const PlainLanes<float, count>& a, const PlainLanes<float, count>& b)
{
    return PlainLanes<float, count>::Each(a, b, [](float x, float y) { return x < y ? x : y; });
}

/// The maximum of each lane; `b` where `a` is NaN.
template<int count>
HARMONET_ALWAYS_INLINE PlainLanes<float, count> Maximum(
    const PlainLanes<float, count>& a, const PlainLanes<float, count>& b)
{
    return PlainLanes<float, count>::Each(a, b, [](float x, float y) { return x > y ? x : y; });
}

/// Truncates towards zero. Each lane must fit in an int.
template<int count>
HARMONET_ALWAYS_INLINE PlainLanes<int, count> ToInts(const PlainLanes<float, count>& value)
{
    PlainLanes<int, count> result{};
    for (int i = 0; i < count; ++i) {
        result.lanes[i] = static_cast<int>(value.lanes[i]);
    }
    return result;
}

/// Four lanes of two vectors, by number; those of `high` follow those of `low`.
template<int first, int second, int third, int fourth, class Number>
HARMONET_ALWAYS_INLINE PlainLanes<Number, 4> Shuffle(
    const PlainLanes<Number, 4>& low, const PlainLanes<Number, 4>& high)
{
    const auto pick = [&](int lane) { return lane < 4 ? low.lanes[lane] : high.lanes[lane - 4]; };
    return {pick(first), pick(second), pick(third), pick(fourth)};
}

#if defined(__GNUC__) && !defined(HARMONET_PLAIN_LANES)

inline constexpr bool hasVectorTypes = true;

/// Four numbers in the compiler's own vector type: one register of SSE2 or of 64-bit ARM.
using FourFloats = float __attribute__((vector_size(4 * sizeof(float))));
using FourInts = int __attribute__((vector_size(4 * sizeof(int))));

HARMONET_ALWAYS_INLINE FourFloats Minimum(FourFloats a, FourFloats b)
{
    return a < b ? a : b;
}

HARMONET_ALWAYS_INLINE FourFloats Maximum(FourFloats a, FourFloats b)
{
    return a > b ? a : b;
}

HARMONET_ALWAYS_INLINE FourInts ToInts(FourFloats value)
{
    return __builtin_convertvector(value, FourInts);
}

template<int first, int second, int third, int fourth>
HARMONET_ALWAYS_INLINE FourFloats Shuffle(FourFloats low, FourFloats high)
{
    return __builtin_shufflevector(low, high, first, second, third, fourth);
}

template<int first, int second, int third, int fourth>
HARMONET_ALWAYS_INLINE FourInts Shuffle(FourInts low, FourInts high)
{
    return __builtin_shufflevector(low, high, first, second, third, fourth);
}

#else

inline constexpr bool hasVectorTypes = false;
using FourFloats = PlainLanes<float, 4>;
using FourInts = PlainLanes<int, 4>;

#endif

} // namespace Quon
