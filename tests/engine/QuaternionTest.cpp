#include "harmonet/engine/Quaternion.h"

#include "harmonet/engine/Matrix.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <random>

namespace Quon
{
namespace
{

/// The images of the axes, term by term from the products of the fields.
Matrix3 AxesOf(const Quaternion& q)
{
    return {{{1 - 2 * q.y * q.y - 2 * q.z * q.z, 2 * q.x * q.y + 2 * q.w * q.z,
                 2 * q.x * q.z - 2 * q.w * q.y},
        {2 * q.x * q.y - 2 * q.w * q.z, 1 - 2 * q.x * q.x - 2 * q.z * q.z, 2 * q.y * q.z + 2 * q.w * q.x},
        {2 * q.x * q.z + 2 * q.w * q.y, 2 * q.y * q.z - 2 * q.w * q.x, 1 - 2 * q.x * q.x - 2 * q.y * q.y}}};
}

void ExpectNear(const Vector3& actual, const Vector3& expected, float tolerance)
{
    EXPECT_NEAR(actual.x, expected.x, tolerance);
    EXPECT_NEAR(actual.y, expected.y, tolerance);
    EXPECT_NEAR(actual.z, expected.z, tolerance);
}

void ExpectUnit(const Quaternion& q)
{
    EXPECT_NEAR(q.x * q.x + q.y * q.y + q.z * q.z + q.w * q.w, 1.0f, 2e-6f);
}

// Also the half turns, where the trace is -1 and only one of the four ways to the fields works.
TEST(Quaternion, TakesTheAxesToTheRowsOfItsMatrix)
{
    std::mt19937 random(1);
    std::normal_distribution<float> normal;
    for (int round = 0; round < 400; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        Vector3 front{normal(random), normal(random), normal(random)};
        front = front * (1.0f / std::sqrt(LengthSquared(front)));
        Vector3 right = Cross(front, {normal(random), normal(random), normal(random)});
        if (round < 4) {
            constexpr Vector3 fronts[] = {{0, 0, -1}, {0, 0, 1}, {0, 0, -1}, {0, 0, 1}};
            constexpr Vector3 rights[] = {{1, 0, 0}, {-1, 0, 0}, {-1, 0, 0}, {1, 0, 0}};
            front = fronts[round];
            right = rights[round];
        }
        right = right * (1.0f / std::sqrt(LengthSquared(right)));
        const Matrix3 rows{{right, Cross(right, front), -front}};

        Quaternion q;
        q.Set(rows);
        ExpectUnit(q);
        const Matrix3 axes = AxesOf(q);
        for (int row = 0; row < 3; ++row) {
            ExpectNear(axes.rows[row], rows.rows[row], 2e-6f);
        }
    }
}

TEST(Quaternion, StaysFiniteAndOfLengthOneForMatricesThatAreNoRotations)
{
    constexpr float infinity = std::numeric_limits<float>::infinity();
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

TEST(Quaternion, RotateFollowsTheAxesWhateverTheLength)
{
    const Quaternion q = Normalized({0.3f, -0.5f, 0.2f, 0.7f});
    const Matrix3 axes = AxesOf(q);
    const Vector3 v{2.0f, -3.0f, 5.0f};
    const Vector3 expected = axes.rows[0] * v.x + axes.rows[1] * v.y + axes.rows[2] * v.z;
    for (const float length : {1.0f, 1e-18f, 1e18f, -3.0f}) {
        SCOPED_TRACE(length);
        ExpectNear(Rotate({q.x * length, q.y * length, q.z * length, q.w * length}, v), expected, 1e-5f);
    }
    ExpectNear(Rotate({0, 0, 0, 0}, v), v, 0.0f);
    ExpectNear(Rotate({0, 0, 0, std::numeric_limits<float>::infinity()}, v), v, 0.0f);
}

TEST(Quaternion, ProductTurnsByTheInnerOneFirstAndInverseTurnsBack)
{
    const Quaternion outer{0.5f, -1.0f, 0.25f, 2.0f};
    const Quaternion inner{-0.7f, 0.1f, 0.4f, 0.3f};
    const Vector3 v{1.0f, 2.0f, 3.0f};
    ExpectNear(Rotate(outer * inner, v), Rotate(outer, Rotate(inner, v)), 1e-5f);
    ExpectNear(Rotate(Inverse(outer), Rotate(outer, v)), v, 1e-5f);
    ExpectUnit(outer * Inverse(outer));
}

} // namespace
} // namespace Quon
