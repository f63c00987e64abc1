#pragma once

#include "harmonet/engine/Export.h"
#include "harmonet/engine/Vector.h"

namespace Quon
{

struct Matrix3;

/// Orientations: a plain record of four floats with the operations that the scene graph needs.
///
/// A unit quaternion q turns a vector v into q v q*. So it takes the X axis to
/// (1 - 2yy - 2zz, 2xy + 2wz, 2xz - 2wy), the Y axis to (2xy - 2wz, 1 - 2xx - 2zz, 2yz + 2wx) and the Z axis
/// to (2xz + 2wy, 2yz - 2wx, 1 - 2xx - 2yy).
struct HARMONET_ENGINE_API Quaternion
{
    /// The identity unless set otherwise.
    float x = 0.0F;
    float y = 0.0F;
    float z = 0.0F;
    float w = 1.0F;

    /// Becomes the rotation that takes the axes X, Y, Z to the three rows of \p rotation.
    ///
    /// The result always has length 1. Rows that are not quite orthogonal or of unit length give a rotation
    /// near them; a matrix of zeros, or one that holds NaN or infinity, gives the identity.
    void Set(const Matrix3& rotation);
};

/// Field by field; a quaternion and its negative are the same rotation and yet not equal here.
constexpr bool operator==(const Quaternion& a, const Quaternion& b)
{
    return a.x == b.x && a.y == b.y && a.z == b.z && a.w == b.w;
}

/// The rotation that turns by \p inner first and then by \p outer.
HARMONET_ENGINE_API Quaternion operator*(const Quaternion& outer, const Quaternion& inner);

/// The quaternion of length 1 with the same direction; the identity if \p q has no length or is not finite.
HARMONET_ENGINE_API Quaternion Normalized(const Quaternion& q);

/// The rotation back: the conjugate divided by the squared length; the identity if \p q has no length or is
/// not finite.
HARMONET_ENGINE_API Quaternion Inverse(const Quaternion& q);

/// \p v turned by \p q, whose length does not matter. A \p q without length, or one that is not finite, turns
/// nothing.
HARMONET_ENGINE_API Vector3 Rotate(const Quaternion& q, const Vector3& v);

} // namespace Quon
