#include "drivers/openal/Placement.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace Quon
{

namespace
{

constexpr float maxCoordinate = 1e15F;
constexpr float fullTurn = 360.0F;

// A sound without distances and cone has zeros. These are the defaults of sounds defined in text.
constexpr float defaultMinDistance = 10.0F;
constexpr float defaultMaxDistance = 500.0F;

float ClampDistance(float distance)
{
    return std::clamp(distance, 0.0F, std::numeric_limits<float>::max());
}

} // namespace

bool TakePosition(const Vector3& position, Vector3& taken)
{
    if (std::isnan(position.x) || std::isnan(position.y) || std::isnan(position.z)) {
        return false;
    }
    taken = {std::clamp(position.x, -maxCoordinate, maxCoordinate),
        std::clamp(position.y, -maxCoordinate, maxCoordinate),
        std::clamp(position.z, -maxCoordinate, maxCoordinate)};
    return true;
}

bool TakeDistances(float minDistance, float maxDistance, bool cutout, DistanceRange& taken)
{
    if (std::isnan(minDistance) || std::isnan(maxDistance)) {
        return false;
    }
    taken = {ClampDistance(minDistance), ClampDistance(maxDistance), cutout};
    if (taken.minDistance == 0.0F && taken.maxDistance == 0.0F && !cutout) {
        taken = {defaultMinDistance, defaultMaxDistance, false};
    }
    return true;
}

bool TakeCone(float innerAngle, float outerAngle, float outerGain, Cone& taken)
{
    if (std::isnan(innerAngle) || std::isnan(outerAngle) || std::isnan(outerGain)) {
        return false;
    }
    const float inner = std::clamp(innerAngle, 0.0F, fullTurn);
    taken = {inner, std::clamp(outerAngle, inner, fullTurn), std::clamp(outerGain, 0.0F, 1.0F)};
    if (taken.outerAngle == 0.0F && taken.outerGain == 0.0F) {
        taken = {};
    }
    return true;
}

bool IsCutOut(const DistanceRange& range, const Vector3& source, const Vector3& listener)
{
    if (!range.cutout) {
        return false;
    }
    const double x = double{source.x} - listener.x;
    const double y = double{source.y} - listener.y;
    const double z = double{source.z} - listener.z;
    return x * x + y * y + z * z > double{range.maxDistance} * range.maxDistance;
}

} // namespace Quon
