#pragma once

#include "harmonet/engine/Quaternion.h"
#include "harmonet/engine/Vector.h"

#include <cmath>

namespace Quon
{

inline bool IsFinite(const Vector3& vector)
{
    return std::isfinite(vector.x) && std::isfinite(vector.y) && std::isfinite(vector.z);
}

// The images of the three axes under a rotation: the columns of the rotation matrix of a unit quaternion.

inline Vector3 ImageOfX(const Quaternion& q)
{
    return {1.0F - 2.0F * q.y * q.y - 2.0F * q.z * q.z, 2.0F * q.x * q.y + 2.0F * q.w * q.z,
        2.0F * q.x * q.z - 2.0F * q.w * q.y};
}

inline Vector3 ImageOfY(const Quaternion& q)
{
    return {2.0F * q.x * q.y - 2.0F * q.w * q.z, 1.0F - 2.0F * q.x * q.x - 2.0F * q.z * q.z,
        2.0F * q.y * q.z + 2.0F * q.w * q.x};
}

inline Vector3 ImageOfZ(const Quaternion& q)
{
    return {2.0F * q.x * q.z + 2.0F * q.w * q.y, 2.0F * q.y * q.z - 2.0F * q.w * q.x,
        1.0F - 2.0F * q.x * q.x - 2.0F * q.y * q.y};
}

} // namespace Quon
