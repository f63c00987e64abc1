// The positions of a line's sources: by the rules for any line and listener, and in cases computed by hand;
// also for lines of length zero and for NaN.

#include "harmonet/instances/FastLength.h"
#include "tests/instances/PolylineTest.h"

#include <algorithm>
#include <limits>
#include <numbers>
#include <random>

namespace Quon
{

namespace
{

class PolylinePlaces : public PolylineTest
{
protected:
    /// The line gets a listener that no microphone would pass on.
    void ListenAnywhere(int id, const Vector3& place) { GetLine(id).SndUpdate(0.04F, place, true); }
};

constexpr float nan = std::numeric_limits<float>::quiet_NaN();
constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float huge = std::numeric_limits<float>::max();

constexpr Vector3 listeners[] = {{0.0F, 0.0F, 5.0F}, {1.0F, 2.0F, 3.0F}, {huge, 0.0F, -huge},
    {nan, 0.0F, 0.0F}, {0.0F, infinity, 0.0F}, {0.0F, 0.0F, 0.0F}};

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

LineSettings MakeLine(Random& random)
{
    LineSettings settings;
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

float Distance(const Vector3& a, const Vector3& b)
{
    return std::sqrt(LengthSquared(a - b));
}

float ToRadians(float degrees)
{
    return degrees * std::numbers::pi_v<float> / 180.0F;
}

/// The rules for the positions of sources, checked with closely spaced points on the line. Lengths are exact
/// to a thousandth.
class LineRules
{
public:
    explicit LineRules(const LineSettings& newLine)
        : line(newLine)
        , range(line.cutout ? line.maxDistance : std::max(line.maxDistance, 30.0F * line.minDistance))
    {
        constexpr std::pair<float, float> reductions[] = {{135, 20}, {90, 15}, {45, 10}, {10, 5}};
        const float angle = std::fmod(std::fabs(line.minAngle), 180.0F);
        float reduction = 0.0F;
        for (const auto& [above, less] : reductions) {
            reduction = reduction == 0.0F && angle > above ? less : reduction;
        }
        minAngle = ToRadians(angle - reduction);
        for (std::size_t i = 1; i < line.points.size(); ++i) {
            const Vector3 way = line.points[i] - line.points[i - 1];
            const int count = static_cast<int>(std::sqrt(LengthSquared(way)) / step) + 1;
            for (int k = 0; k <= count; ++k) {
                samples.push_back(
                    line.points[i - 1] + way * (static_cast<float>(k) / static_cast<float>(count)));
            }
        }
    }

    void Check(const Vector3& listener, int numSources, const std::vector<Vector3>& places) const
    {
        const float nearest = DistanceTo(listener);
        if (nearest > 1.003F * range) {
            // A single source whose line is far away may stay where it was.
            EXPECT_TRUE(places.empty() || numSources == 1);
            return;
        }
        if (nearest > 0.995F * range) {
            return;
        }
        ASSERT_GE(places.size(), 1U);
        ASSERT_LE(static_cast<int>(places.size()), numSources);
        float last = nearest * 0.99F - step;
        for (const Vector3& place : places) {
            EXPECT_LT(DistanceTo(place), step) << "on the line";
            const float distance = Distance(place, listener);
            EXPECT_LE(distance, 1.003F * range);
            EXPECT_GE(distance, 0.997F * last) << "nearest first";
            last = distance;
            for (const Vector3* other = places.data(); other != &place; ++other) {
                EXPECT_LE(Cosine(listener, place, *other), std::cos(minAngle) + 0.006F);
            }
        }
        EXPECT_LE(Distance(places[0], listener), 1.003F * nearest + step);
        if (static_cast<int>(places.size()) < numSources && nearest > step) {
            ExpectNoRoom(listener, places);
        }
    }

private:
    static constexpr float step = 0.5F;

    float DistanceTo(const Vector3& place) const
    {
        float nearest = huge;
        for (const Vector3& sample : samples) {
            nearest = std::min(nearest, LengthSquared(sample - place));
        }
        return std::sqrt(nearest);
    }

    static float Cosine(const Vector3& listener, const Vector3& a, const Vector3& b)
    {
        return Dot(a - listener, b - listener) / (Distance(a, listener) * Distance(b, listener));
    }

    /// No point of the line is in a direction of its own by more than the distance of two candidates.
    void ExpectNoRoom(const Vector3& listener, const std::vector<Vector3>& places) const
    {
        const float spacing = std::max(line.minDistance * 0.5F, line.maxDistance * 0.01F);
        for (const Vector3& sample : samples) {
            const float distance = Distance(sample, listener);
            const float angle = minAngle + std::max(0.2F, spacing / distance) + ToRadians(5.0F);
            const auto isApart = [&](const Vector3& place) {
                return Cosine(listener, sample, place) < std::cos(angle);
            };
            ASSERT_FALSE(distance < 0.99F * line.maxDistance && angle < std::numbers::pi_v<float> &&
                std::ranges::all_of(places, isApart))
                << ToText(sample);
        }
    }

    const LineSettings line;
    const float range;
    float minAngle;
    std::vector<Vector3> samples;
};

TEST_F(PolylinePlaces, SourcesKeepToTheRulesOnAnyLine)
{
    int placedInAll = 0;
    for (unsigned int seed = 1; seed <= 60; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Random random(seed);
        const LineSettings settings = MakeLine(random);
        const LineRules rules(settings);
        const int id = PlayLine(settings);
        Vector3 listener = random.Point(400.0F);
        for (int move = 0; move < 25 && !HasFailure(); ++move) {
            SCOPED_TRACE("move " + std::to_string(move) + " to " + ToText(listener));
            const int kind = random.Below(8);
            listener = kind < 2 ? random.Point(600.0F) : listener + random.Point(20.0F);
            if (kind == 7) {
                listener = settings.points.back(); // On the line one source is heard.
            }
            Listen(listener);
            rules.Check(listener, GetLine(id).GetNumSounds(), Places(id));
            placedInAll += static_cast<int>(Places(id).size());
        }
        group->StopSound(id);
    }
    EXPECT_GT(placedInAll, 1000);
}

TEST_F(PolylinePlaces, PositionsAreSentOnlyWhenTheyChange)
{
    Listen(origin);
    const int id = PlayLine(StraightLine(-50.0F, 50.0F, 1, 60.0F));
    StepTimes(3, 40);
    EXPECT_TRUE(Places(id).empty());
    Listen({0.0F, 0.0F, 10.0F});
    // Placed while they waited, they are now on their channels.
    Listen({20.0F, 0.0F, 5.0F});
    const std::vector<Vector3> places = Places(id);
    ASSERT_EQ(places.size(), 2U);
    EXPECT_EQ(places[0], (Vector3{20.0F, 0.0F, 0.0F}));
    for (std::size_t rank = 0; rank < 2; ++rank) {
        const ChannelRecord& channel = recording.channels.at(ChannelOf(SourceIds(id)[rank]));
        EXPECT_EQ(channel.position, places[rank]);
        EXPECT_EQ(channel.gain, rank == 0 ? 1.0F : 0.5F);
    }
}

// The bounds by hand: the nearest point of the line is at distance `range` exactly.
TEST_F(PolylinePlaces, ALineIsHeardOnlyWithinItsReach)
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
        LineSettings settings = StraightLine(-10.0F, 10.0F, row.numAddSounds, 90.0F);
        settings.cutout = row.cutout;
        const int id = PlayLine(settings);
        Listen({0.0F, 0.0F, row.distance});
        EXPECT_EQ(!Places(id).empty(), row.isHeard);
        group->StopSound(id);
    }
    // Without distances a driver takes those of a definition that sets none.
    const Vector3 points[] = {{2.0F, 0.0F, 0.0F}, {2.0F, 0.0F, 9.0F}};
    const int bare = group->New3DSound(points, 2, file, nullptr, 1, 45.0F);
    EXPECT_TRUE(group->StartSound(bare, 0));
    TakeLog();
    Listen(origin);
    EXPECT_FALSE(Places(bare).empty());
    for (const std::string& line : TakeLog({"c"})) {
        EXPECT_TRUE(line.find("SetMinMaxDistance") == std::string::npos || line.ends_with(" 0 0 0")) << line;
    }
}

TEST_F(PolylinePlaces, ALineOfLengthZeroIsAPointAndNonFiniteOnesAreSilent)
{
    const std::vector<Vector3> lines[] = {
        {{3, 0, 4}},
        {{3, 0, 4}, {3, 0, 4}, {3, 0, 4}},
        {{3, 0, 4}, {3, 0, 4.0000005F}},
        {{nan, 0, 0}, {3, 0, 4}, {0, infinity, 0}},
        {{3, 0, 4}, {huge, 0, -huge}}, // Too far away to measure.
        {{nan, 0, 0}, {0, infinity, 0}},
    };
    for (const std::vector<Vector3>& points : lines) {
        for (const unsigned int numAddSounds : {0U, 3U}) {
            SCOPED_TRACE("line " + std::to_string(&points - lines) + ", " + std::to_string(numAddSounds));
            LineSettings settings;
            settings.points = points;
            settings.numAddSounds = numAddSounds;
            settings.maxDistance = numAddSounds == 0 ? infinity : 100.0F;
            const int id = PlayLine(settings);
            for (const Vector3& listener : listeners) {
                ListenAnywhere(id, listener);
            }
            const std::vector<Vector3> places = Places(id);
            ASSERT_EQ(places.size(), &points == std::end(lines) - 1 ? 0U : 1U);
            for (const Vector3& place : places) {
                EXPECT_LT(LengthSquared(place - Vector3{3, 0, 4}), 1e-10F);
            }
            group->StopSound(id);
        }
    }
}

TEST_F(PolylinePlaces, AnyDistancesKeepSourcesOnTheLine)
{
    constexpr float distances[] = {0.0F, -0.0F, -5.0F, 1e-30F, 10.0F, 1e20F, huge, infinity, nan};
    for (const float minDistance : distances) {
        for (const float maxDistance : distances) {
            SCOPED_TRACE(ToText(minDistance) + " to " + ToText(maxDistance));
            LineSettings settings = StraightLine(-10.0F, 10.0F, 3, 60.0F);
            settings.minDistance = minDistance;
            settings.maxDistance = maxDistance;
            settings.cutout = std::signbit(minDistance) || maxDistance > 1.0F;
            const int id = PlayLine(settings);
            for (const Vector3& listener : listeners) {
                ListenAnywhere(id, listener);
                for (const Vector3& place : Places(id)) {
                    EXPECT_LE(std::fabs(place.x), 10.01F);
                }
            }
            group->StopSound(id);
        }
    }
}

// Many segments all around the listener give far more candidates than fit on the stack.
TEST_F(PolylinePlaces, ThousandsOfCandidatesUseTheHeap)
{
    LineSettings settings;
    settings.numAddSounds = 7;
    settings.minDistance = 1.0F;
    for (int i = 0; i < 2000; ++i) {
        const auto turn = static_cast<float>(i);
        settings.points.push_back({50.0F * std::sin(turn * 2.0F), 0.0F, 50.0F * std::cos(turn * 3.0F)});
    }
    const int id = PlayLine(settings);
    Listen({0.0F, 20.0F, 0.0F});
    Step(40);
    const std::size_t blocksBefore = Alloc::LiveBlocks();
    const Vector3 listener{0.0F, 21.0F, 0.0F};
    Listen(listener);
    EXPECT_EQ(Alloc::LiveBlocks(), blocksBefore);
    LineRules(settings).Check(listener, 8, Places(id));
}

TEST(FastLength, IsExactToAThousandth)
{
    EXPECT_EQ(FastLength({0.0F, 0.0F, 0.0F}), 0.0F);
    Random random(3);
    for (int i = 0; i < 100000; ++i) {
        const Vector3 v = random.Point(1000.0F);
        ASSERT_NEAR(FastLength(v) / std::sqrt(LengthSquared(v)), 1.0F, 0.0011F) << ToText(v);
    }
}

} // namespace

} // namespace Quon
