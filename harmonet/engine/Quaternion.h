#pragma once

#include "harmonet/engine/Export.h"
#include "harmonet/engine/Vector.h"

namespace Quon
{

struct Matrix3;

/// Orientations: a plain record of four floats with the operations that the scene graph needs.
///
/// A unit quaternion q rotates a vector v to q v q*. It maps the X axis to (1 - 2yy - 2zz, 2xy + 2wz, 2xz -
/// 2wy), the Y axis to (2xy - 2wz, 1 - 2xx - 2zz, 2yz + 2wx) and the Z axis to (2xz + 2wy, 2yz - 2wx, 1 - 2xx
/// - 2yy).
struct HARMONET_ENGINE_API Quaternion
{
    /// The identity unless set otherwise.
    float x = 0.0F;
    float y = 0.0F;
    float z = 0.0F;
    float w = 1.0F;

    /// Sets the rotation that maps the axes X, Y, Z to the three rows of \p rotation.
    ///
    /// The result always has length 1. Rows that are not exactly orthonormal yield a nearby rotation; a zero
    /// matrix, or one that contains NaN or infinity, yields the identity.
    void Set(const Matrix3& rotation);
};

/// Compares field by field; a quaternion and its negative represent the same rotation but are not equal.
constexpr bool operator==(const Quaternion& a, const Quaternion& b)
{
    return a.x == b.x && a.y == b.y && a.z == b.z && a.w == b.w;
}

/// The rotation by \p inner followed by \p outer.
HARMONET_ENGINE_API Quaternion operator*(const Quaternion& outer, const Quaternion& inner);

/// The unit quaternion with the same direction; the identity if \p q has length 0 or is not finite.
HARMONET_ENGINE_API Quaternion Normalized(const Quaternion& q);

/// The inverse rotation: the conjugate divided by the squared length; the identity if \p q has length 0 or is
/// not finite.
HARMONET_ENGINE_API Quaternion Inverse(const Quaternion& q);

/// \p v rotated by \p q, which need not have unit length. Returns \p v unchanged if \p q has length 0 or is
/// not finite.
HARMONET_ENGINE_API Vector3 Rotate(const Quaternion& q, const Vector3& v);

} // namespace Quon
