#include "drivers/openal/effects/EffectChain.h"
#include "tests/drivers/OfflineRig.h"
#include "tests/drivers/effects/OwnedList.h"
#include "tests/drivers/effects/Signals.h"

#include <gtest/gtest.h>

namespace Quon
{
namespace
{

using namespace Testing;

constexpr int rateHz = OfflineRig::rateHz;
constexpr double roundingError = 1.0 / 32768;

// Four echoes in a second, each at half the level of the one before.
constexpr FXEcho echo = {50, 50, 250, 250, 0};

/// Sounds of one channel with effects, and what these make of them all in one piece.
class OpenALEffects : public testing::Test
{
protected:
    static Pcm GetSamples(const FormulaFile& file, int sampleFrames)
    {
        Pcm samples;
        for (int i = 0; i < sampleFrames; ++i) {
            samples.push_back(static_cast<float>(file.GetStored(i, 0)));
        }
        return samples;
    }

    void ExpectHeard(const Pcm& dry)
    {
        EffectChain chain;
        chain.Build(list.Get(), {rateHz, 2});
        const Pcm expected = TakeSide(Through(chain, MakeStereo(dry, dry)), 0);
        const Rendering heard = rig.Heard();
        ASSERT_GE(heard.GetFrames(), expected.size());
        for (size_t i = 0; i < expected.size(); ++i) {
            ASSERT_NEAR(heard.At(i), expected[i], roundingError) << "sample frame " << i;
        }
    }

    OwnedList list;
    OfflineRig rig;
};

TEST_F(OpenALEffects, UseTheRateAFileHasWhenItIsRead)
{
    list.Add(SndFXEcho, echo);
    FormulaFile& file =
        rig.Make({2000, 8000}, [](int sampleFrame, int) { return sampleFrame < 100 ? 0.5 : 0.0; });
    file.TurnOutToHave(22050);
    rig.Play(file, 0, list.Get());
    rig.StepTimes(10, 50);
    const Rendering heard = rig.Heard();
    EXPECT_GT(heard.At(rateHz / 4 + 50), 0.1) << "the first echo after a quarter of a second";
    EXPECT_LT(heard.Level(rateHz / 10, rateHz / 5, 0), 0.001);
}

TEST_F(OpenALEffects, EndWhenTheTailHasDecayedBy60Decibels)
{
    list.Add(SndFXEcho, echo);
    FormulaFile& file = rig.Make({4410}, Constant(0.8));
    SndChannel* const channel = rig.Play(file, 0, list.Get());
    EXPECT_FALSE(channel->SetFrequency(22050)) << "a sound with effects cannot change its rate";
    FXEcho live{};
    ASSERT_TRUE(channel->GetFXEcho(&live));
    EXPECT_EQ(live.leftDelay, echo.leftDelay);
    FXGargle other{};
    EXPECT_FALSE(channel->GetFXGargle(&other));
    rig.StepTimes(3, 50);
    for (int update = 0; update < 60 && rig.TakeEvents().empty(); ++update) {
        EXPECT_EQ(channel->GetRemainLength(), 0U);
        rig.Step(50);
    }
    // The n-th echo has 0.8 * 0.5 * 0.5^(n - 1): the ninth, after 2.25 s, is the last above 0.001. It lasts
    // 100 ms, and then another could follow for 250 ms.
    Pcm sound = GetSamples(file, 4410);
    sound.resize(static_cast<size_t>(rateHz) * 235 / 100);
    ExpectHeard(sound);
    const double endMs = 1000.0 * static_cast<double>(rig.Heard().GetFrames()) / rateHz;
    EXPECT_NEAR(endMs, 2250 + 100 + 250 + 20, 60.0);
    EXPECT_EQ(rig.GetFileAtEnd(), &file);
    EXPECT_FALSE(channel->GetFXEcho(&live));
}

TEST_F(OpenALEffects, AFileAppendedDuringTheTailContinuesThroughTheSameEffects)
{
    list.Add(SndFXEcho, echo);
    FormulaFile& first = rig.Make({4410}, Constant(0.8));
    FormulaFile& second = rig.Make({8820}, Constant(0.25));
    SndChannel* const channel = rig.Play(first, 0, list.Get());
    rig.StepTimes(4, 50);
    rig.Append(*channel, first, second);
    rig.Step(1);
    EXPECT_EQ(channel->GetRemainLength(), 0U) << "the first file has long been over";
    rig.Step(49);
    const std::vector<DriverEvent> expected = {{SndFileChanged, channel, &first, &second, 250}};
    EXPECT_EQ(rig.TakeEvents(), expected);
    rig.StepTimes(8, 50);
    EXPECT_EQ(channel->GetRemainLength(), 0U);

    const Rendering heard = rig.Heard();
    size_t begin = rateHz / 5;
    while (heard.At(begin) < 0.05) {
        ++begin;
    }
    EXPECT_LE(begin, rateHz * 210U / 1000) << "no more than 10 ms of tail were queued";
    Pcm dry = GetSamples(first, 4410);
    dry.resize(begin);
    const Pcm added = GetSamples(second, 8820);
    dry.insert(dry.end(), added.begin(), added.end());
    dry.resize(heard.GetFrames());
    ExpectHeard(dry);
}

} // namespace
} // namespace Quon
