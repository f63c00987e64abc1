#pragma once

#include <bit>
#include <cstdint>
#include <numbers>

namespace Quon
{

// Logarithm and power as polynomials, which a compiler can vectorise, unlike those of the standard library.
// The error of both is within 4e-6; GetLog2(1) and GetExp2(0) are exact.

/// The logarithm to base 2 of a normal positive number.
inline float GetLog2(float value)
{
    constexpr int mantissaBits = 23;
    constexpr std::int32_t exponentOfOne = 127;
    const auto bits = std::bit_cast<std::int32_t>(value);
    const std::int32_t exponent = (bits >> mantissaBits) - exponentOfOne;
    const auto mantissa = std::bit_cast<float>(bits - exponent * (1 << mantissaBits));
    // The series of the inverse hyperbolic tangent, which converges fast for a mantissa of 1 to 2.
    const float s = (mantissa - 1.0F) / (mantissa + 1.0F);
    const float s2 = s * s;
    const float sum = s * (1.0F + s2 * (1.0F / 3 + s2 * (1.0F / 5 + s2 * (1.0F / 7 + s2 * (1.0F / 9)))));
    return static_cast<float>(exponent) + 2.0F * std::numbers::log2e_v<float> * sum;
}

/// 2 to the power of -126 to 0.
inline float GetExp2(float power)
{
    constexpr int mantissaBits = 23;
    constexpr std::int32_t exponentOfOne = 127;
    const auto whole = static_cast<std::int32_t>(power);
    const float x = (power - static_cast<float>(whole)) * std::numbers::ln2_v<float>;
    // The series of the exponential function; each factor is the ratio of one term to the previous one.
    float part = 1.0F;
    part = 1.0F + part * x * (1.0F / 7);
    part = 1.0F + part * x * (1.0F / 6);
    part = 1.0F + part * x * (1.0F / 5);
    part = 1.0F + part * x * (1.0F / 4);
    part = 1.0F + part * x * (1.0F / 3);
    part = 1.0F + part * x * (1.0F / 2);
    part = 1.0F + part * x;
    return part * std::bit_cast<float>((whole + exponentOfOne) * (1 << mantissaBits));
}

} // namespace Quon
