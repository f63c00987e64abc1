#pragma once

#include "harmonet/engine/Vector.h"

namespace Quon
{

/// Checks the positional settings of a sound. Pure functions; a game can pass any number, and OpenAL must
/// receive one that it can compute with.

/// A validated distance attenuation: `minDistance` and `maxDistance` are finite and not negative.
struct DistanceRange
{
    float minDistance = 0.0F;
    float maxDistance = 0.0F;
    bool cutout = false;
};

/// A validated cone: full angles from 0 to 360, the outer not below the inner, a gain from 0 to 1.
struct Cone
{
    float innerAngle = 360.0F;
    float outerAngle = 360.0F;
    float outerGain = 1.0F;
};

/// Clamps each coordinate to a range whose squares do not overflow. Returns false and changes nothing if one
/// is NaN.
bool TakePosition(const Vector3& position, Vector3& taken);

/// Clamps infinity to the largest number and negative values to 0. Distances of 0 without cutout mean unset
/// and become 10 and 500. Returns false and changes nothing if one is NaN.
bool TakeDistances(float minDistance, float maxDistance, bool cutout, DistanceRange& taken);

/// Clamps the values to their ranges. A cone with angles and gain of 0 means unset. Returns false and changes
/// nothing if one is NaN.
bool TakeCone(float innerAngle, float outerAngle, float outerGain, Cone& taken);

/// Whether a sound with cutout is silent because it is farther away than its maximum distance.
bool IsCutOut(const DistanceRange& range, const Vector3& source, const Vector3& listener);

} // namespace Quon
