#include "harmonet/voices/Importance.h"
#include "tests/voices/PlainDecision.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <limits>
#include <memory>
#include <random>
#include <string>

namespace Quon
{

namespace
{

constexpr std::uint32_t longAgo = 1000;

Contender Make(int priority, float distance, std::uint32_t name, std::uint32_t stateTimeMs = longAgo,
    std::uint32_t flags = FlagDistLTMax, std::uint32_t marks = 0)
{
    return {priority, distance * distance, name, stateTimeMs, flags, marks};
}

/// The contenders in the rows of blocks, as Decide() gets them.
class Crowd
{
public:
    /// Between the rows of the contenders are `gap` rows of sounds that do not compete.
    Crowd(
        const std::vector<Contender>& contenders, const ContenderCounts& newCounts, std::uint32_t newGap = 0)
        : gap(newGap)
        , counts(newCounts)
    {
        constexpr ListID ids[] = {ListID::Playing, ListID::Emulated, ListID::Waiting};
        std::uint32_t row = 0;
        for (std::size_t list = 0; list < counts.size(); ++list) {
            for (std::size_t left = counts[list]; left > 0; --left) {
                for (std::uint32_t i = 0; i < gap; ++i) {
                    Add(row++, Make(100, 0.0F, 999), ListID::Paused);
                }
                Add(row, contenders[entries.size()], ids[list]);
                entries.push_back({row++, 0});
            }
        }
    }

    void Decide(int limit)
    {
        std::vector<SoundBlock*> pointers;
        for (const auto& block : blocks) {
            pointers.push_back(block.get());
        }
        Contenders lists;
        std::span<const ListEntry> left = entries;
        for (std::size_t list = 0; list < counts.size(); ++list) {
            lists[list] = left.first(counts[list]);
            left = left.subspan(counts[list]);
        }
        Quon::Decide(pointers, lists, limit, decision);
    }
    SoundReason GetReason(std::uint32_t number) const { return decision.reasons[entries[number].row]; }
    float GetMultiplier(std::uint32_t number) { return At(entries[number].row).Multiplier(); }
    std::uint32_t NumberOf(std::uint32_t row) const
    {
        return row != Decision::nobody ? row / (gap + 1) : Decision::nobody;
    }
    std::vector<std::uint32_t> GetChosen() const
    {
        std::vector<std::uint32_t> chosen;
        for (const std::uint32_t row : decision.chosen) {
            chosen.push_back(NumberOf(row));
        }
        return chosen;
    }
    /// The lists that the decision leaves: without the chosen, the runners-up in front of their equals.
    std::array<PlainDecision::List, numContenderLists> GetLists()
    {
        std::array<PlainDecision::List, numContenderLists> left;
        const auto keyOf = [this](std::uint32_t number) { return At(entries[number].row).GetWeightedKey(); };
        auto item = decision.ranking.begin();
        const std::vector<std::uint32_t> chosen = GetChosen();
        for (std::size_t i = 0; i < left.size(); ++i) {
            for (std::size_t count = counts[i]; count > 0; --count, ++item) {
                if (std::ranges::find(chosen, NumberOf(item->row)) == chosen.end()) {
                    left[i].push_back(NumberOf(item->row));
                }
            }
            const std::uint32_t runnerUp = NumberOf(decision.runnersUp[i]);
            if (runnerUp == Decision::nobody) {
                continue;
            }
            left[i].remove(runnerUp);
            left[i].insert(std::ranges::find_if(
                               left[i], [&](std::uint32_t other) { return keyOf(other) >= keyOf(runnerUp); }),
                runnerUp);
        }
        return left;
    }

private:
    SoundRow At(std::uint32_t row)
    {
        while (row / SoundBlock::numLanes >= blocks.size()) {
            blocks.push_back(std::make_unique<SoundBlock>());
            for (std::uint32_t lane = 0; lane < SoundBlock::numLanes; ++lane) {
                SoundRow(*blocks.back(), lane).Reset(nullptr);
            }
            blocks.back()->end = SoundBlock::numLanes;
        }
        return {*blocks[row / SoundBlock::numLanes], row % SoundBlock::numLanes};
    }
    void Add(std::uint32_t number, const Contender& contender, ListID list)
    {
        const SoundRow row = At(number);
        row.Priority() = contender.priority;
        row.DistSqr() = contender.distSqr;
        row.Name() = contender.name;
        row.StateTimeMs() = contender.stateTimeMs;
        row.Flags() = contender.flags;
        row.Marks() = contender.marks;
        row.Multiplier() = 7.0F; // Of an earlier decision.
        row.List() = list;
    }

    std::uint32_t gap;
    std::vector<std::unique_ptr<SoundBlock>> blocks;
    ContenderCounts counts;
    std::vector<ListEntry> entries;
    Decision decision;
};

/// A crowd with many ties and many like sounds, or with few.
std::vector<Contender> MakeCrowd(std::mt19937& random, std::size_t count)
{
    const auto below = [&](unsigned int limit) { return random() % limit; };
    const float distances[] = {0.0F, 1.0F, 1.5F, 100.0F, 1e19F, std::numeric_limits<float>::infinity()};
    const bool hasTies = below(2) == 0;
    const bool hasPriorities = below(2) == 0;
    const unsigned int numNames = 1 + below(below(2) == 0 ? 3 : 1000);
    std::vector<Contender> crowd;
    for (std::size_t i = 0; i < count; ++i) {
        const float distance =
            hasTies ? distances[below(std::size(distances))] : static_cast<float>(random()) * 1e-6F;
        std::uint32_t flags = below(8) != 0 ? FlagDistLTMax : 0U;
        for (const std::uint32_t rare : {FlagMusic, FlagInPause, FlagPolyline}) {
            flags |= below(12) == 0 ? rare : 0;
        }
        std::uint32_t marks = 0;
        for (const std::uint32_t rare : {RowDelayed, RowNewcomer}) {
            marks |= below(12) == 0 ? rare : 0;
        }
        const bool isWide = hasPriorities && below(20) == 0;
        const int priority = isWide ? static_cast<int>(random()) : static_cast<int>(below(3)) - 1;
        const std::uint32_t times[] = {0, 199, 200, longAgo};
        crowd.push_back(Make(priority, distance, below(numNames), times[below(4)], flags, marks));
    }
    return crowd;
}

} // namespace

// The kernel's own form sorts by digits and merges; the plain one compares pair by pair.
TEST(Decide, AgreesWithTheBruteForceForm)
{
    std::mt19937 random(1);
    for (int round = 0; round < 2000; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        ContenderCounts counts;
        for (std::size_t& count : counts) {
            count = random() % (round % 50 == 0 ? 250 : 24);
        }
        const std::vector<Contender> contenders = MakeCrowd(random, counts[0] + counts[1] + counts[2]);
        const int limit = static_cast<int>(random() % 30) - 2;
        Crowd crowd(contenders, counts, random() % 3);
        crowd.Decide(limit);
        const PlainDecision plain(contenders, counts, limit);
        ASSERT_EQ(crowd.GetChosen(), plain.chosen);
        ASSERT_EQ(crowd.GetLists(), plain.lists);
        for (std::uint32_t number = 0; number < contenders.size(); ++number) {
            ASSERT_EQ(crowd.GetMultiplier(number), plain.multipliers[number]);
            const SoundReason reason = crowd.GetReason(number);
            const bool isChosen = std::ranges::find(plain.chosen, number) != plain.chosen.end();
            ASSERT_EQ(reason == SoundReason::Won || reason == SoundReason::Protected, isChosen);
        }
    }
}

// One contender against a rival on the only channel.
TEST(Decide, ReportsReasons)
{
    constexpr std::uint32_t inRange = FlagDistLTMax;
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
        {"in pause", Make(1, 1.0F, 2, longAgo, inRange | FlagInPause), SoundReason::Paused},
        {"delayed", Make(1, 1.0F, 2, longAgo, inRange, RowDelayed), SoundReason::Delayed},
        {"just emulated", Make(1, 1.0F, 2, 199), SoundReason::Settling},
        {"just started", Make(1, 1.0F, 2, longAgo, inRange, RowNewcomer), SoundReason::Settling},
        {"the head of a line", Make(1, 0.0F, 2, longAgo, inRange | FlagPolyline), SoundReason::None},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        // The rival plays; a sound like the third name, nearer and paused, makes that name a duplicate.
        const std::vector<Contender> contenders = {
            Make(0, 10.0F, 1), row.contender, Make(0, 9.0F, 3, longAgo, inRange | FlagInPause)};
        Crowd crowd(contenders, {1, 2, 0});
        crowd.Decide(1);
        EXPECT_EQ(crowd.GetReason(1), row.reason);
        EXPECT_EQ(crowd.GetChosen().front(), row.reason == SoundReason::Won ? 1U : 0U);
    }
    // Without a winner, all have lost by priority.
    Crowd crowd({Make(std::numeric_limits<int>::max(), 1.0F, 1)}, {0, 1, 0});
    crowd.Decide(0);
    EXPECT_EQ(crowd.GetReason(0), SoundReason::LostByPriority);
}

TEST(Decide, ProtectsYoungSoundsBeyondTheLimit)
{
    Crowd crowd(
        {Make(0, 9.0F, 1, 199), Make(0, 8.0F, 2, 0), Make(0, 7.0F, 3, 200), Make(5, 1.0F, 4)}, {3, 1, 0});
    crowd.Decide(1);
    EXPECT_EQ(crowd.GetChosen(), (std::vector<std::uint32_t>{0, 1}));
    EXPECT_EQ(crowd.GetReason(0), SoundReason::Protected);
    EXPECT_EQ(crowd.GetReason(3), SoundReason::LostByPriority);
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
