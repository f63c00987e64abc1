// Sounds that a game starts between updates keep their spacing.

#include "drivers/openal/MixTimeline.h"
#include "drivers/openal/StartTimes.h"
#include "tests/drivers/OfflineRig.h"

#include <gtest/gtest.h>

namespace Quon
{
namespace
{

constexpr int rateHz = OfflineRig::rateHz;

/// A game with frames of one length, whose library runs a full update once 40 ms have come together.
class Game
{
public:
    explicit Game(const OfflineRig::OptionValues& options = {})
        : rig(64, rateHz, nullptr, options)
    {
    }

    /// Asks for a shot now; it starts in the next update, or at once.
    void Shoot(bool immediately)
    {
        asked.push_back(timeMs);
        if (immediately) {
            Start(gatheredMs);
        }
        else {
            waiting.push_back(gatheredMs);
        }
    }

    void Frame(long ms)
    {
        timeMs += ms;
        gatheredMs += ms;
        if (gatheredMs < 40) {
            return;
        }
        rig.Step(static_cast<unsigned long>(gatheredMs), [this] {
            for (const long after : waiting) {
                Start(after);
            }
            waiting.clear();
        });
        gatheredMs = 0;
    }

    /// How many milliseconds after it was asked for each shot is heard, in order.
    std::vector<double> GetLatencies() const
    {
        std::vector<double> latencies;
        const Rendering heard = rig.Heard();
        for (size_t i = 0; i < heard.GetFrames(); ++i) {
            if (heard.At(i) > 0.4) {
                const double heardMs = 1000.0 * static_cast<double>(i) / rateHz;
                latencies.push_back(heardMs - static_cast<double>(asked.at(latencies.size())));
            }
        }
        EXPECT_EQ(latencies.size(), asked.size());
        return latencies;
    }

    OfflineRig rig;

private:
    void Start(long afterMs)
    {
        FormulaFile& shot = rig.Make({100}, [](int i, int) { return i == 0 ? 0.5 : 0.0; });
        SndChannel* const channel = rig.Create(shot);
        channel->SetStartTime(afterMs * 1000, 0);
        channel->Play();
    }

    long timeMs = 0;
    long gatheredMs = 0; ///< Since the last update.
    std::vector<long> asked;
    std::vector<long> waiting;
};

constexpr double frameMs = 1000.0 / rateHz;

TEST(OpenALStart, KeepsTheSpacingOfStartsToTheSampleFrame)
{
    for (const long gameFrameMs : {5, 7, 16, 33}) {
        for (const bool immediately : {false, true}) {
            SCOPED_TRACE(std::to_string(gameFrameMs) + (immediately ? " ms, immediately" : " ms"));
            Game game;
            for (int i = 0; i < 200; ++i) {
                if (i < 180 && (i % 9 == 4 || i % 9 == 6)) {
                    game.Shoot(immediately);
                }
                game.Frame(gameFrameMs);
            }
            // As far after an update as they were asked for after the one before; at once they need no
            // update.
            const long latencyMs = immediately ? 0 : (39 + gameFrameMs) / gameFrameMs * gameFrameMs;
            for (const double measured : game.GetLatencies()) {
                ASSERT_NEAR(measured, static_cast<double>(latencyMs), frameMs);
            }
        }
    }
}

TEST(OpenALStart, WithoutTheOptionStartsComeWithTheNextUpdate)
{
    Game game(OfflineRig::OptionValues{{"OpenALKeepStartTimes", "0"}});
    for (int i = 0; i < 50; ++i) {
        if (i % 8 == 2) {
            game.Shoot(false);
        }
        game.Frame(10);
    }
    for (const double latency : game.GetLatencies()) {
        EXPECT_NEAR(latency, 20.0, frameMs);
    }
}

TEST(OpenALStart, LeadingSilenceDoesNotCountAsLength)
{
    OfflineRig rig;
    FormulaFile& first = rig.Make({2205}, Constant(0.25));
    FormulaFile& second = rig.Make({2205}, Constant(0.5));
    first.Add(&second);
    SndChannel* channel = nullptr;
    rig.Step(50, [&] {
        channel = rig.Create(first);
        channel->SetStartTime(30000, 0);
        channel->Play();
    });
    rig.Step(20);
    EXPECT_EQ(channel->GetRemainLength(), 50U);
    rig.Step(40);
    EXPECT_EQ(channel->GetRemainLength(), 20U);
    rig.Step(40);
    EXPECT_EQ(channel->GetRemainLength(), 30U);
    rig.Step(40);
    const std::vector<DriverEvent> expected = {
        {SndFileChanged, channel, &first, &second, 150}, {SndChannelEnded, channel, nullptr, nullptr, 190}};
    EXPECT_EQ(rig.TakeEvents(), expected);
    const Rendering heard = rig.Heard();
    EXPECT_EQ(heard.FindFirst(0.1, 0), static_cast<size_t>(80 * rateHz / 1000));
}

TEST(StartTimes, LatencyIsTheLongestUsualTimeBetweenUpdates)
{
    StartTimes times;
    const auto after = [&times](int updates, std::uint32_t ms) {
        for (int i = 0; i < updates; ++i) {
            times.EndUpdate();
            times.BeginUpdate(ms, 0);
        }
        return times.GetLatency() / 1000;
    };
    EXPECT_EQ(after(10, 48), 48);
    EXPECT_EQ(after(1, 66), 66) << "rises at once";
    EXPECT_EQ(after(1, 800), 66) << "a single long one does not count";
    EXPECT_EQ(after(20, 48), 66);
    EXPECT_EQ(after(100, 48), 48) << "falls when all have been shorter for a while";
    EXPECT_EQ(after(3, 200), 200);
    EXPECT_EQ(times.GetMachineTime(77), 0) << "that of the beginning of the update";
    times.EndUpdate();
    EXPECT_EQ(times.GetLatency(), 0) << "outside of updates sounds begin at once";
    EXPECT_EQ(times.GetDelay(7000), 7000);
    EXPECT_EQ(times.GetMachineTime(77), 77);
}

// A device that mixes 20 ms at a time, when it reads the clock: every 10.2 ms, so that it is usually late, by
// up to as much; its clock is off by a ten-thousandth. A feeder observes it every 10 ms.
TEST(MixTimeline, EstimatesWhatAnEvenDeviceWouldHaveMixed)
{
    constexpr std::int64_t ms = 1000000;
    constexpr std::int64_t look = 102 * ms / 10;
    for (const double speed : {0.9999, 1.0001}) {
        const auto mix = [speed](std::int64_t now) {
            const std::int64_t read = now / look * look;
            return static_cast<std::int64_t>(static_cast<double>(read) * speed) / (20 * ms) * 20 * ms;
        };
        MixTimeline timeline;
        std::int64_t now = 0;
        for (std::int64_t round = 10 * ms; round < 30000 * ms;) {
            timeline.Observe(now, mix(now));
            const std::int64_t next = timeline.GetNextObservation(now, 20 * ms);
            ASSERT_GT(next, now);
            if (now > 2100 * ms) {
                ASSERT_NEAR(
                    static_cast<double>(timeline.ToMixed(now)), static_cast<double>(now) * speed, 1.0 * ms)
                    << now;
            }
            now = std::min(next, round);
            round += now == round ? 10 * ms : 0;
        }
    }
}

} // namespace
} // namespace Quon
