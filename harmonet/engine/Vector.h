#pragma once

namespace Quon
{

/// A position in a plane.
struct Vector2
{
    /// In world units.
    float x = 0.0F;
    float y = 0.0F;
};

/// A position or direction: a plain record of floats. No operation here checks for NaN or infinity; callers
/// check numbers where they enter the system.
struct Vector3
{
    /// In world units; right-handed, Y up.
    float x = 0.0F;
    float y = 0.0F;
    float z = 0.0F;
};

/// Component by component; NaN equals nothing.
constexpr bool operator==(const Vector2& a, const Vector2& b)
{
    return a.x == b.x && a.y == b.y;
}

/// Component by component; NaN equals nothing.
constexpr bool operator==(const Vector3& a, const Vector3& b)
{
    return a.x == b.x && a.y == b.y && a.z == b.z;
}

/// The sum.
constexpr Vector3 operator+(const Vector3& a, const Vector3& b)
{
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}

/// The difference.
constexpr Vector3 operator-(const Vector3& a, const Vector3& b)
{
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}

/// The opposite direction.
constexpr Vector3 operator-(const Vector3& v)
{
    return {-v.x, -v.y, -v.z};
}

/// Scaled.
constexpr Vector3 operator*(const Vector3& v, float factor)
{
    return {v.x * factor, v.y * factor, v.z * factor};
}

/// Scaled.
constexpr Vector3 operator*(float factor, const Vector3& v)
{
    return v * factor;
}

/// The dot product. The sum runs over x, y, z in this order.
constexpr float Dot(const Vector3& a, const Vector3& b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

/// The cross product. Right-handed: Cross(X, Y) is Z.
constexpr Vector3 Cross(const Vector3& a, const Vector3& b)
{
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

/// The square of the length.
constexpr float LengthSquared(const Vector3& v)
{
    return Dot(v, v);
}

} // namespace Quon
