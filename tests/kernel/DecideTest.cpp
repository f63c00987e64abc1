#include "harmonet/kernel/Importance.h"
#include "tests/kernel/PlainDecision.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <string>

namespace Quon
{

namespace
{

constexpr std::uint16_t longAgo = 1000;

Contender Make(int priority, float distance, std::uint32_t name, std::uint16_t stateTimeMs = longAgo,
    unsigned int traits = TraitInRange)
{
    return {priority, distance * distance, name, stateTimeMs, static_cast<std::uint16_t>(traits)};
}

/// The lists that a decision leaves: without the chosen, the runners-up in front of their equals.
std::array<PlainDecision::List, numContenderLists> GetLists(
    const Decision& decision, const std::vector<Contender>& contenders, const ContenderCounts& counts)
{
    std::array<PlainDecision::List, numContenderLists> lists;
    const auto keyOf = [&](std::uint32_t number) {
        return ImportanceKey(contenders[number].priority,
            WeightDistance(contenders[number].distSqr, decision.multipliers[number]));
    };
    std::size_t place = 0;
    for (std::size_t i = 0; i < lists.size(); ++i) {
        for (std::size_t left = counts[i]; left > 0; --left) {
            const std::uint32_t number = decision.ranking[place++].number;
            if (std::ranges::find(decision.chosen, number) == decision.chosen.end()) {
                lists[i].push_back(number);
            }
        }
        const std::uint32_t runnerUp = decision.runnersUp[i];
        if (runnerUp == Decision::nobody) {
            continue;
        }
        lists[i].remove(runnerUp);
        lists[i].insert(std::ranges::find_if(
                            lists[i], [&](std::uint32_t other) { return keyOf(other) >= keyOf(runnerUp); }),
            runnerUp);
    }
    return lists;
}

/// A crowd with many ties and many like sounds, or with few.
std::vector<Contender> MakeCrowd(std::mt19937& random, std::size_t count)
{
    const auto below = [&](unsigned int limit) { return random() % limit; };
    const float distances[] = {0.0F, 1.0F, 1.5F, 100.0F, 1e19F, std::numeric_limits<float>::infinity()};
    const bool hasTies = below(2) == 0;
    const unsigned int numNames = 1 + below(below(2) == 0 ? 3 : 1000);
    std::vector<Contender> crowd;
    for (std::size_t i = 0; i < count; ++i) {
        const float distance =
            hasTies ? distances[below(std::size(distances))] : static_cast<float>(random()) * 1e-6F;
        unsigned int traits = below(8) != 0 ? TraitInRange : 0;
        for (const ContenderTraits rare : {TraitMusic, TraitPaused, TraitLine, TraitDelayed, TraitNewcomer}) {
            traits |= below(12) == 0 ? rare : 0;
        }
        const int priority = below(20) == 0 ? static_cast<int>(random()) : static_cast<int>(below(3)) - 1;
        const std::uint16_t times[] = {0, 199, 200, longAgo};
        crowd.push_back(Make(priority, distance, below(numNames), times[below(4)], traits));
    }
    return crowd;
}

} // namespace

// The kernel's own form sorts by digits and merges; the plain one compares pair by pair.
TEST(Decide, AgreesWithTheBruteForceForm)
{
    std::mt19937 random(1);
    Decision decision;
    for (int round = 0; round < 2000; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        ContenderCounts counts;
        for (std::size_t& count : counts) {
            count = random() % (round % 50 == 0 ? 250 : 24);
        }
        const std::vector<Contender> crowd = MakeCrowd(random, counts[0] + counts[1] + counts[2]);
        const int limit = static_cast<int>(random() % 30) - 2;
        Decide(crowd, counts, limit, decision);
        const PlainDecision plain(crowd, counts, limit);
        ASSERT_EQ(std::vector(decision.chosen.begin(), decision.chosen.end()), plain.chosen);
        ASSERT_EQ(std::vector(decision.multipliers.begin(), decision.multipliers.end()), plain.multipliers);
        ASSERT_EQ(GetLists(decision, crowd, counts), plain.lists);
        for (std::uint32_t number = 0; number < crowd.size(); ++number) {
            const SoundReason reason = decision.reasons[number];
            const bool isChosen = std::ranges::find(plain.chosen, number) != plain.chosen.end();
            ASSERT_EQ(reason == SoundReason::Won || reason == SoundReason::Protected, isChosen);
        }
    }
}

// One contender against a rival on the only channel.
TEST(Decide, ReportsReasons)
{
    const struct Row
    {
        const char* what;
        Contender contender;
        SoundReason reason;
    } rows[] = {
        {"nearer", Make(0, 5.0F, 2), SoundReason::Won},
        {"higher priority", Make(1, 50.0F, 2), SoundReason::Won},
        {"lower priority", Make(-1, 1.0F, 2), SoundReason::LostByPriority},
        {"farther away", Make(0, 11.0F, 2), SoundReason::LostByDistance},
        {"like a nearer one", Make(0, 9.9F, 3), SoundReason::LostAsDuplicate},
        {"out of range", Make(1, 1.0F, 2, longAgo, 0), SoundReason::BeyondReach},
        {"in pause", Make(1, 1.0F, 2, longAgo, TraitInRange | TraitPaused), SoundReason::Paused},
        {"delayed", Make(1, 1.0F, 2, longAgo, TraitInRange | TraitDelayed), SoundReason::Delayed},
        {"just emulated", Make(1, 1.0F, 2, 199), SoundReason::Settling},
        {"the head of a line", Make(1, 0.0F, 2, longAgo, TraitInRange | TraitLine), SoundReason::None},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        // The rival plays; a sound like the third name, nearer and paused, makes that name a duplicate.
        const std::vector<Contender> contenders = {
            Make(0, 10.0F, 1), row.contender, Make(0, 9.0F, 3, longAgo, TraitInRange | TraitPaused)};
        Decision decision;
        Decide(contenders, {1, 2, 0}, 1, decision);
        EXPECT_EQ(decision.reasons[1], row.reason);
        EXPECT_EQ(decision.chosen.front(), row.reason == SoundReason::Won ? 1U : 0U);
    }
}

TEST(Decide, ProtectsYoungSoundsBeyondTheLimit)
{
    const std::vector<Contender> contenders = {
        Make(0, 9.0F, 1, 199), Make(0, 8.0F, 2, 0), Make(0, 7.0F, 3, 200), Make(5, 1.0F, 4)};
    Decision decision;
    Decide(contenders, {3, 1, 0}, 1, decision);
    EXPECT_EQ(
        std::vector(decision.chosen.begin(), decision.chosen.end()), (std::vector<std::uint32_t>{0, 1}));
    EXPECT_EQ(decision.reasons[0], SoundReason::Protected);
    EXPECT_EQ(decision.reasons[3], SoundReason::LostByPriority);
}

TEST(ImportanceKey, OrdersEveryKindOfDistance)
{
    const float infinity = std::numeric_limits<float>::infinity();
    const float distances[] = {infinity, 1e38F, 2.0F, 1.0F, 1e-45F, 0.0F, -1.0F};
    for (std::size_t i = 1; i < std::size(distances); ++i) {
        EXPECT_LT(ImportanceKey(0, distances[i - 1]), ImportanceKey(0, distances[i])) << distances[i];
    }
    EXPECT_EQ(ImportanceKey(0, 0.0F), ImportanceKey(0, -0.0F));
    const int priorities[] = {std::numeric_limits<int>::min(), -1, 0, 1, std::numeric_limits<int>::max()};
    for (std::size_t i = 1; i < std::size(priorities); ++i) {
        EXPECT_LT(ImportanceKey(priorities[i - 1], 0.0F), ImportanceKey(priorities[i], infinity));
    }
}

} // namespace Quon
