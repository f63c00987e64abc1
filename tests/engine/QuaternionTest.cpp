// Properties that tests of listeners and sounds do not show.

#include "harmonet/engine/Quaternion.h"

#include "harmonet/engine/Matrix.h"

#include <gtest/gtest.h>
#include <limits>

namespace Quon
{
namespace
{

constexpr float infinity = std::numeric_limits<float>::infinity();

void ExpectNear(const Vector3& actual, const Vector3& expected)
{
    EXPECT_LT(LengthSquared(actual - expected), 1e-10F);
}

void ExpectUnit(const Quaternion& q)
{
    EXPECT_NEAR(q.x * q.x + q.y * q.y + q.z * q.z + q.w * q.w, 1.0F, 2e-6F);
}

// About X, Y, Z: the trace is -1 and only one of the four ways to the fields works.
TEST(Quaternion, ConvertsHalfTurnMatrices)
{
    constexpr float signs[3][3] = {{1, -1, -1}, {-1, 1, -1}, {-1, -1, 1}};
    for (const auto& [x, y, z] : signs) {
        Quaternion q;
        q.Set({{{x, 0, 0}, {0, y, 0}, {0, 0, z}}});
        ExpectNear(Rotate(q, {1, 2, 3}), {x, 2 * y, 3 * z});
    }
}

TEST(Quaternion, StaysNormalisedForMatricesThatAreNotRotations)
{
    constexpr float nan = std::numeric_limits<float>::quiet_NaN();
    constexpr float huge = std::numeric_limits<float>::max();
    const Matrix3 matrices[] = {
        {{{0, 0, 0}, {0, 0, 0}, {0, 0, 0}}},
        {{{1, 0, 0}, {0, 1, 0}, {0, -1, 0}}},
        {{{-1, 0, 0}, {0, -1, 0}, {0, 0, -1}}},
        {{{1, 0, 0}, {1, 0, 0}, {1, 0, 0}}},
        {{{huge, huge, huge}, {huge, huge, huge}, {-huge, huge, huge}}},
        {{{1, 0, 0}, {0, infinity, 0}, {0, 0, 1}}},
        {{{nan, 0, 0}, {0, 1, 0}, {0, 0, 1}}},
    };
    for (const Matrix3& matrix : matrices) {
        SCOPED_TRACE("matrix " + std::to_string(&matrix - matrices));
        Quaternion q;
        q.Set(matrix);
        ExpectUnit(q);
    }
}

TEST(Quaternion, RotateIgnoresLengthAndAProductAppliesTheInnerFirst)
{
    // A third of a turn about the diagonal: X goes to Y, Y to Z.
    const Quaternion third{0.5F, 0.5F, 0.5F, 0.5F};
    const Vector3 v{2, -3, 5};
    for (const float length : {1.0F, 1e-18F, 1e18F, -3.0F}) {
        SCOPED_TRACE(length);
        const float field = 0.5F * length;
        ExpectNear(Rotate({field, field, field, field}, v), {5, 2, -3});
    }
    EXPECT_EQ(Rotate({0, 0, 0, 0}, v), v);
    EXPECT_EQ(Rotate({0, 0, 0, infinity}, v), v);

    const Quaternion outer{0.5F, -1.0F, 0.25F, 2.0F};
    ExpectNear(Rotate(outer * third, v), Rotate(outer, {5, 2, -3}));
    ExpectNear(Rotate(Inverse(outer), Rotate(outer, v)), v);
    ExpectUnit(outer * Inverse(outer));
}

} // namespace
} // namespace Quon
