#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <numbers>

namespace Quon
{

/// The phase of a slow oscillation, as a fraction of 2^32: it wraps around automatically and does not drift.
/// A plain value.
class Oscillator
{
public:
    // The step is rounded up, so that a period of a whole number of sample frames is not one too long.
    Oscillator(double frequencyHz, int rateHz)
        : step(static_cast<std::uint32_t>(
              static_cast<std::uint64_t>(std::ceil(std::fmod(frequencyHz / rateHz, 1.0) * wholeTurn))))
    {
    }

    void Advance(std::size_t sampleFrames = 1) { phase += static_cast<std::uint32_t>(sampleFrames) * step; }
    void Reset() { phase = 0; }
    std::uint32_t GetPhase() const { return phase; }
    std::uint32_t GetStep() const { return step; }

    static constexpr double wholeTurn = 4294967296.0;
    static constexpr std::uint32_t quarterTurn = 0x40000000;

private:
    std::uint32_t phase = 0;
    std::uint32_t step;
};

/// A triangle from -1 to 1 that, like a sine, begins at 0 and rises.
inline float GetTriangle(std::uint32_t phase)
{
    constexpr float halfTurn = 2147483648.0F;
    const auto saw = static_cast<float>(static_cast<std::int32_t>(phase - Oscillator::quarterTurn));
    return 1.0F - 2.0F / halfTurn * std::fabs(saw);
}

/// The sine of the same phase, from the triangle: sin(pi / 2 * t) by its series, within 4e-6.
inline float GetSine(float triangle)
{
    constexpr double q = std::numbers::pi / 2;
    constexpr double q2 = q * q;
    constexpr auto c1 = static_cast<float>(q);
    constexpr auto c3 = static_cast<float>(-q * q2 / 6);
    constexpr auto c5 = static_cast<float>(q * q2 * q2 / 120);
    constexpr auto c7 = static_cast<float>(-q * q2 * q2 * q2 / 5040);
    constexpr auto c9 = static_cast<float>(q * q2 * q2 * q2 * q2 / 362880);
    const float t2 = triangle * triangle;
    return triangle * (c1 + t2 * (c3 + t2 * (c5 + t2 * (c7 + t2 * c9))));
}

} // namespace Quon
