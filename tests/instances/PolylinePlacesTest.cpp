// Where the sources of a line stand, against the slow model and in cases worked out by hand.

#include "harmonet/instances/FastLength.h"
#include "tests/instances/PolylineTest.h"

#include <random>

namespace Quon
{

namespace
{

using PolylinePlaces = PolylineTest;

class Random
{
public:
    explicit Random(unsigned int seed)
        : engine(seed)
    {
    }
    float Between(float low, float high) { return std::uniform_real_distribution<float>(low, high)(engine); }
    int Below(int limit) { return std::uniform_int_distribution<int>(0, limit - 1)(engine); }
    Vector3 Point(float reach)
    {
        const float x = Between(-reach, reach);
        const float y = Between(-reach, reach) * 0.1F;
        return {x, y, Between(-reach, reach)};
    }

private:
    std::mt19937 engine;
};

PolylineModel::Settings MakeLine(Random& random)
{
    PolylineModel::Settings settings;
    settings.points.push_back(random.Point(300.0F));
    for (int left = 1 + random.Below(30); left > 0; --left) {
        const int kind = random.Below(8);
        const Vector3 last = settings.points.back();
        settings.points.push_back(kind == 0 ? last
                : kind < 4                  ? random.Point(300.0F)
                                            : last + random.Point(30.0F));
    }
    settings.numAddSounds = static_cast<unsigned int>(random.Below(10));
    settings.minAngle = random.Between(-200.0F, 400.0F);
    settings.minDistance = random.Between(0.5F, 20.0F);
    settings.maxDistance = random.Between(20.0F, 250.0F);
    settings.cutout = random.Below(2) == 0;
    return settings;
}

bool IsNear(const Vector3& a, const Vector3& b)
{
    const Vector3 way = a - b;
    return Dot(way, way) < 1e-6F;
}

TEST_F(PolylinePlaces, SourcesStandWhereThePlainModelPutsThem)
{
    int placedInAll = 0;
    for (unsigned int seed = 1; seed <= 120; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Random random(seed);
        const PolylineModel::Settings settings = MakeLine(random);
        PolylineModel model(settings);
        const int id = PlayLine(settings);
        ASSERT_EQ(GetLine(id).GetNumSounds(), model.GetNumSources());
        Vector3 listener = random.Point(400.0F);
        for (int move = 0; move < 25; ++move) {
            SCOPED_TRACE("move " + std::to_string(move));
            listener = random.Below(4) == 0 ? random.Point(600.0F) : listener + random.Point(20.0F);
            const std::vector<Vector3>& expected = model.Move(listener);
            Listen(listener);
            const std::vector<Vector3> places = Places(id);
            ASSERT_EQ(places.size(), expected.size());
            for (std::size_t i = 0; i < places.size(); ++i)
                ASSERT_PRED2(IsNear, places[i], expected[i]) << "source " << i;
            placedInAll += static_cast<int>(places.size());
        }
        group->StopSound(id);
    }
    EXPECT_GT(placedInAll, 2000);
}

TEST_F(PolylinePlaces, TheDriverHearsWhereTheSourcesStand)
{
    const int id = PlayLine(StraightLine(-50.0F, 50.0F, 1, 60.0F));
    Listen({0.0F, 0.0F, 10.0F});
    // Placed while they waited, they are now on their channels.
    for (const Vector3& listener : {Vector3{0.0F, 0.0F, 10.0F}, Vector3{20.0F, 0.0F, 5.0F}}) {
        Listen(listener);
        const std::vector<Vector3> places = Places(id);
        ASSERT_EQ(places.size(), 2U);
        EXPECT_EQ(places[0], (Vector3{listener.x, 0.0F, 0.0F}));
        for (int rank = 0; rank < 2; ++rank) {
            const int channel = ChannelOf(SourceIds(id)[static_cast<std::size_t>(rank)]);
            EXPECT_EQ(recording.channels.at(channel).position, places[static_cast<std::size_t>(rank)]);
            EXPECT_EQ(recording.channels.at(channel).gain, rank == 0 ? 1.0F : 0.5F);
        }
    }
}

// The bounds by hand: the nearest point of the line is at distance `range` exactly.
TEST_F(PolylinePlaces, ALineIsHeardWithinItsReachAlone)
{
    struct ReachRow
    {
        const char* name;
        unsigned int numAddSounds;
        bool cutout;
        float distance;
        bool isHeard;
    };
    const ReachRow rows[] = {
        {"one source, inside", 0, true, 99.0F, true},
        {"one source, at the edge", 0, true, 100.0F, false},
        {"two sources, at the edge", 1, true, 100.0F, true},
        {"two sources, outside", 1, true, 100.1F, false},
        {"without a cutout the minimum distance counts thirty times", 1, false, 300.0F, true},
        {"and no more", 1, false, 300.1F, false},
    };
    for (const ReachRow& row : rows) {
        SCOPED_TRACE(row.name);
        PolylineModel::Settings settings = StraightLine(-10.0F, 10.0F, row.numAddSounds, 90.0F);
        settings.cutout = row.cutout;
        const int id = PlayLine(settings);
        Listen({0.0F, 0.0F, row.distance});
        EXPECT_EQ(!Places(id).empty(), row.isHeard);
        group->StopSound(id);
    }
}

TEST_F(PolylinePlaces, AListenerAtRestHearsNothingNew)
{
    Listen(origin);
    Step(40);
    const int id = PlayLine(StraightLine(-10.0F, 10.0F, 1, 90.0F));
    StepTimes(3, 40);
    EXPECT_TRUE(Places(id).empty());
    Listen({0.0F, 0.0F, 1.0F});
    EXPECT_FALSE(Places(id).empty());
}

TEST_F(PolylinePlaces, AListenerOnTheLineHearsOneSource)
{
    const int id = PlayLine(StraightLine(-50.0F, 50.0F, 7, 20.0F));
    Listen({5.0F, 0.0F, 0.0F});
    EXPECT_EQ(Places(id), (std::vector<Vector3>{{5.0F, 0.0F, 0.0F}}));
}

TEST(FastLength, IsRightToAboutAThousandthAndExactOnTheAxes)
{
    EXPECT_EQ(FastLength({0.0F, 0.0F, 0.0F}), 0.0F);
    EXPECT_EQ(FastLength({-3.0F, 0.0F, 0.0F}), 3.0F);
    EXPECT_EQ(FastLength({0.0F, 4.5F, 0.0F}), 4.5F);
    EXPECT_EQ(FastLength({0.0F, 0.0F, -2.0F}), 2.0F);
    std::mt19937 random(3);
    std::uniform_real_distribution<float> any(-1000.0F, 1000.0F);
    float worst = 0.0F;
    for (int i = 0; i < 100000; ++i) {
        const Vector3 v{any(random), any(random), any(random)};
        const float exact = std::sqrt(Dot(v, v));
        worst = std::max(worst, std::fabs(FastLength(v) - exact) / exact);
    }
    EXPECT_LT(worst, 0.0011F);
    EXPECT_GT(worst, 0.0F);
}

} // namespace

} // namespace Quon
