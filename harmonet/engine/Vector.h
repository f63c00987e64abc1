#pragma once

/// Positions and directions: plain records of floats, passed by value or reference and owned by whoever holds
/// them. No operation here checks for NaN or infinity; callers look at numbers where they enter.

namespace Quon
{

struct Vector2
{
    float x = 0.0F;
    float y = 0.0F;
};

struct Vector3
{
    float x = 0.0F;
    float y = 0.0F;
    float z = 0.0F;
};

constexpr bool operator==(const Vector2& a, const Vector2& b)
{
    return a.x == b.x && a.y == b.y;
}

constexpr bool operator==(const Vector3& a, const Vector3& b)
{
    return a.x == b.x && a.y == b.y && a.z == b.z;
}

constexpr Vector3 operator+(const Vector3& a, const Vector3& b)
{
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}

constexpr Vector3 operator-(const Vector3& a, const Vector3& b)
{
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}

constexpr Vector3 operator-(const Vector3& v)
{
    return {-v.x, -v.y, -v.z};
}

constexpr Vector3 operator*(const Vector3& v, float factor)
{
    return {v.x * factor, v.y * factor, v.z * factor};
}

constexpr Vector3 operator*(float factor, const Vector3& v)
{
    return v * factor;
}

/// The sum runs over x, y, z in this order.
constexpr float Dot(const Vector3& a, const Vector3& b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

/// Right-handed: Cross(X, Y) is Z.
constexpr Vector3 Cross(const Vector3& a, const Vector3& b)
{
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

constexpr float LengthSquared(const Vector3& v)
{
    return Dot(v, v);
}

} // namespace Quon
