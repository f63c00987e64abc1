#pragma once

#include <algorithm>
#include <cmath>

namespace Quon
{

/// `value`, or `fallback` if it is NaN, clamped to a range. If the range is empty, its upper end counts.
inline float Hold(float value, float lowest, float highest, float fallback)
{
    return std::min(std::max(std::isnan(value) ? fallback : value, lowest), highest);
}

/// The linear factor of a level in decibels.
inline float ToFactor(float decibels)
{
    return std::pow(10.0F, decibels / 20.0F);
}

/// A part of 1 from percent.
inline float ToPart(float percent)
{
    return percent / 100.0F;
}

/// A time in milliseconds as sample frames.
inline double ToSampleFrames(double ms, int rateHz)
{
    return ms * rateHz / 1000.0;
}

/// The highest frequency that a filter is set to.
inline float GetHighestFilterHz(int rateHz)
{
    return static_cast<float>(rateHz) / 3.0F;
}

} // namespace Quon
