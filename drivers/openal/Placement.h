#pragma once

#include "harmonet/engine/Vector.h"

namespace Quon
{

/// Checks and rules for what places a sound in the world. Pure functions; what comes in from a game can be
/// any number, and what goes on to OpenAL has to be one that it can calculate with.

/// A distance attenuation as the channel keeps it: `minDistance` and `maxDistance` are finite and not
/// negative.
struct DistanceRange
{
    float minDistance = 0.0F;
    float maxDistance = 0.0F;
    bool cutout = false;
};

/// A cone as the channel keeps it: full angles from 0 to 360, the outer not below the inner, a gain from 0
/// to 1.
struct Cone
{
    float innerAngle = 360.0F;
    float outerAngle = 360.0F;
    float outerGain = 1.0F;
};

/// Holds each coordinate within a range whose squares do not overflow. False, and no change, if one is no
/// number.
bool TakePosition(const Vector3& position, Vector3& taken);

/// Infinity becomes the largest number and what is negative 0. Distances of 0 without cutout are none, and
/// become 10 and 500. False, and no change, if one is no number.
bool TakeDistances(float minDistance, float maxDistance, bool cutout, DistanceRange& taken);

/// Holds the values within their ranges. A cone that is heard nowhere, of no angle and no gain, is none.
/// False, and no change, if one is no number.
bool TakeCone(float innerAngle, float outerAngle, float outerGain, Cone& taken);

/// Whether a sound with cutout is silent because it is farther away than its maximum distance.
bool IsCutOut(const DistanceRange& range, const Vector3& source, const Vector3& listener);

} // namespace Quon
