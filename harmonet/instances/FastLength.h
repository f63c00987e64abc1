#pragma once

#include "harmonet/engine/Vector.h"

#include <cmath>

namespace Quon
{

// The approximate length of a vector, without a square root. The error is about 0.1 %; it is exact for two
// components of which one is 0. A component above about 1e19 yields infinity or NaN.

inline float FastLength(float x, float y)
{
    constexpr float narrow = 0.414213F; // tan 22.5 degrees
    const float a = std::fabs(x);
    const float b = std::fabs(y);
    if (a < narrow * b) {
        return a * a * 0.483608F / b + b;
    }
    if (b < narrow * a) {
        return b * b * 0.483608F / a + a;
    }
    const float sum = a + b;
    return sum == 0.0F ? 0.0F : sum * 1.04907F - a * b * 1.36785F / sum;
}

inline float FastLength(const Vector3& vector)
{
    return FastLength(FastLength(vector.x, vector.y), vector.z);
}

} // namespace Quon
