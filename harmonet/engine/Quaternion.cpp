#include "harmonet/engine/Quaternion.h"

#include "harmonet/engine/Matrix.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace Quon
{

namespace
{

/// In double, so that squaring a float cannot overflow.
double LengthSquared(const Quaternion& q)
{
    const double x = q.x;
    const double y = q.y;
    const double z = q.z;
    const double w = q.w;
    return x * x + y * y + z * z + w * w;
}

bool HasDirection(double lengthSquared)
{
    return std::isfinite(lengthSquared) && lengthSquared > 0.0;
}

Quaternion FromScaled(double x, double y, double z, double w, double scale)
{
    return {static_cast<float>(x * scale), static_cast<float>(y * scale), static_cast<float>(z * scale),
        static_cast<float>(w * scale)};
}

} // namespace

void Quaternion::Set(const Matrix3& rotation)
{
    const Vector3& right = rotation.rows[0];
    const Vector3& up = rotation.rows[1];
    const Vector3& back = rotation.rows[2];

    // For a rotation matrix these are four times the squares of the fields. The largest is at least 1 for any
    // matrix, since their sum is 4, so the root and the quotients below are safe.
    const double fourWW = 1.0 + right.x + up.y + back.z;
    const double fourXX = 1.0 + right.x - up.y - back.z;
    const double fourYY = 1.0 - right.x + up.y - back.z;
    const double fourZZ = 1.0 - right.x - up.y + back.z;
    const double largest = std::max({fourWW, fourXX, fourYY, fourZZ});

    // Four times the products of two fields, from the elements on both sides of the diagonal.
    const double fourWX = double(up.z) - back.y;
    const double fourWY = double(back.x) - right.z;
    const double fourWZ = double(right.y) - up.x;
    const double fourXY = double(right.y) + up.x;
    const double fourXZ = double(right.z) + back.x;
    const double fourYZ = double(up.z) + back.y;

    std::array<double, 4> fields;
    if (largest == fourWW) {
        fields = {fourWX, fourWY, fourWZ, fourWW};
    }
    else if (largest == fourXX) {
        fields = {fourXX, fourXY, fourXZ, fourWX};
    }
    else if (largest == fourYY) {
        fields = {fourXY, fourYY, fourYZ, fourWY};
    }
    else {
        fields = {fourXZ, fourYZ, fourZZ, fourWZ};
    }

    // All four hold the fields times the same factor, which normalisation removes.
    const double lengthSquared =
        fields[0] * fields[0] + fields[1] * fields[1] + fields[2] * fields[2] + fields[3] * fields[3];
    *this = HasDirection(lengthSquared)
        ? FromScaled(fields[0], fields[1], fields[2], fields[3], 1.0 / std::sqrt(lengthSquared))
        : Quaternion();
}

Quaternion operator*(const Quaternion& outer, const Quaternion& inner)
{
    return {outer.w * inner.x + outer.x * inner.w + outer.y * inner.z - outer.z * inner.y,
        outer.w * inner.y - outer.x * inner.z + outer.y * inner.w + outer.z * inner.x,
        outer.w * inner.z + outer.x * inner.y - outer.y * inner.x + outer.z * inner.w,
        outer.w * inner.w - outer.x * inner.x - outer.y * inner.y - outer.z * inner.z};
}

Quaternion Normalized(const Quaternion& q)
{
    const double lengthSquared = LengthSquared(q);
    // Most orientations already have unit length within float precision.
    constexpr double rounding = 1.2e-7;
    if (std::abs(lengthSquared - 1.0) < rounding) {
        return q;
    }
    return HasDirection(lengthSquared) ? FromScaled(q.x, q.y, q.z, q.w, 1.0 / std::sqrt(lengthSquared))
                                       : Quaternion();
}

Quaternion Inverse(const Quaternion& q)
{
    const double lengthSquared = LengthSquared(q);
    return HasDirection(lengthSquared)
        ? FromScaled(-double(q.x), -double(q.y), -double(q.z), q.w, 1.0 / lengthSquared)
        : Quaternion();
}

Vector3 Rotate(const Quaternion& q, const Vector3& v)
{
    const Quaternion unit = Normalized(q);
    const Vector3 axis{unit.x, unit.y, unit.z};
    const Vector3 twice = 2.0F * Cross(axis, v);
    return v + unit.w * twice + Cross(axis, twice);
}

} // namespace Quon
