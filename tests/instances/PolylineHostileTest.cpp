// Lines that are no lines, and numbers that are no numbers.

#include "tests/instances/PolylineTest.h"

#include <cmath>
#include <limits>

namespace Quon
{

namespace
{

class PolylineHostile : public PolylineTest
{
protected:
    /// The line is told of a listener that no microphone would pass on.
    void ListenAnywhere(int id, const Vector3& place) { GetLine(id).SndUpdate(0.04F, place, true); }
};

constexpr float nan = std::numeric_limits<float>::quiet_NaN();
constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float huge = std::numeric_limits<float>::max();

constexpr Vector3 listeners[] = {{0.0F, 0.0F, 5.0F}, {1.0F, 2.0F, 3.0F}, {huge, 0.0F, -huge},
    {nan, 0.0F, 0.0F}, {0.0F, infinity, 0.0F}, {0.0F, 0.0F, 0.0F}};

TEST_F(PolylineHostile, ALineWithoutALengthIsHeardAtItsPlace)
{
    struct SpotRow
    {
        const char* name;
        std::vector<Vector3> points;
    };
    const SpotRow rows[] = {
        {"one point", {{3, 0, 4}}},
        {"equal points", {{3, 0, 4}, {3, 0, 4}, {3, 0, 4}}},
        {"nearly equal points", {{3, 0, 4}, {3, 0, 4.0000005F}}},
        {"one finite point", {{nan, 0, 0}, {3, 0, 4}, {0, infinity, 0}}},
        {"a point too far away to measure", {{3, 0, 4}, {huge, 0, -huge}}},
    };
    for (const SpotRow& row : rows) {
        for (const unsigned int numAddSounds : {0U, 3U}) {
            SCOPED_TRACE(std::string(row.name) + ", " + std::to_string(numAddSounds));
            PolylineModel::Settings settings;
            settings.points = row.points;
            settings.numAddSounds = numAddSounds;
            const int id = PlayLine(settings);
            Listen({0.0F, 0.0F, 0.0F});
            const std::vector<Vector3> places = Places(id);
            ASSERT_EQ(places.size(), 1U);
            EXPECT_NEAR(places[0].x, 3.0F, 1e-5F);
            EXPECT_NEAR(places[0].z, 4.0F, 1e-5F);
            group->StopSound(id);
        }
    }
}

TEST_F(PolylineHostile, ALineWithoutAFinitePointIsNeverHeard)
{
    for (const float maxDistance : {100.0F, infinity}) {
        PolylineModel::Settings settings;
        settings.points = {{nan, 0, 0}, {0, infinity, 0}};
        settings.numAddSounds = 3;
        settings.maxDistance = maxDistance;
        const int id = PlayLine(settings);
        for (const Vector3& listener : listeners) {
            ListenAnywhere(id, listener);
            EXPECT_TRUE(Places(id).empty());
        }
        group->StopSound(id);
    }
}

TEST_F(PolylineHostile, AnyDistancesLeaveTheSourcesOnTheLineOrInPause)
{
    constexpr float distances[] = {0.0F, -0.0F, -5.0F, 1e-30F, 10.0F, 1e20F, huge, infinity, nan};
    for (const float minDistance : distances) {
        for (const float maxDistance : distances) {
            SCOPED_TRACE(ToText(minDistance) + " to " + ToText(maxDistance));
            PolylineModel::Settings settings = StraightLine(-10.0F, 10.0F, 3, 60.0F);
            settings.minDistance = minDistance;
            settings.maxDistance = maxDistance;
            settings.cutout = std::signbit(minDistance) || maxDistance > 1.0F;
            const int id = PlayLine(settings);
            for (const Vector3& listener : listeners) {
                ListenAnywhere(id, listener);
                for (const Vector3& place : Places(id))
                    EXPECT_LE(std::fabs(place.x), 10.01F);
            }
            group->StopSound(id);
        }
    }
}

// A tangle of pieces all around the listener gives far more candidates than fit on the stack.
TEST_F(PolylineHostile, ThousandsOfCandidatesComeFromTheHeapAndGoBack)
{
    PolylineModel::Settings settings;
    settings.numAddSounds = 7;
    settings.minDistance = 1.0F;
    for (int i = 0; i < 2000; ++i) {
        const auto turn = static_cast<float>(i);
        settings.points.push_back({50.0F * std::sin(turn * 2.0F), 0.0F, 50.0F * std::cos(turn * 3.0F)});
    }
    const int id = PlayLine(settings);
    PolylineModel model(settings);
    Listen({0.0F, 20.0F, 0.0F});
    Step(40);
    const std::size_t blocksBefore = Alloc::LiveBlocks();
    const Vector3 listener{0.0F, 21.0F, 0.0F};
    Listen(listener);
    EXPECT_EQ(Alloc::LiveBlocks(), blocksBefore);
    EXPECT_EQ(Places(id).size(), model.Move(listener).size());
}

} // namespace

} // namespace Quon
