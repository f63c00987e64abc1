#pragma once

#include <algorithm>
#include <cmath>

namespace Quon
{

/// `value`, or `fallback` if it is NaN, clamped to a range. If the range is empty, its upper end counts.
inline float ClampOr(float value, float lowest, float highest, float fallback)
{
    return std::min(std::max(std::isnan(value) ? fallback : value, lowest), highest);
}

/// Converts a level in decibels to a linear factor.
inline float ToFactor(float decibels)
{
    return std::pow(10.0F, decibels / 20.0F);
}

/// Converts percent to a fraction.
inline float ToPart(float percent)
{
    return percent / 100.0F;
}

/// Converts a time in milliseconds to sample frames.
inline double ToSampleFrames(double ms, int rateHz)
{
    return ms * rateHz / 1000.0;
}

/// The maximum frequency of a filter.
inline float GetHighestFilterHz(int rateHz)
{
    return static_cast<float>(rateHz) / 3.0F;
}

} // namespace Quon
