#include "drivers/openal/effects/EffectChain.h"
#include "tests/drivers/OfflineRig.h"
#include "tests/drivers/effects/OwnedList.h"
#include "tests/drivers/effects/Signals.h"

#include <gtest/gtest.h>

#include <cmath>

namespace Quon
{
namespace
{

using namespace Testing;

constexpr int rateHz = OfflineRig::rateHz;
constexpr double roundingError = 1.0 / 32768;

// Four echoes in a second, each at half the level of the one before.
constexpr FXEcho echo = {50, 50, 250, 250, 0};
constexpr FXParamEq equaliser = {1000, 12, 10};

/// What the effects make of a sound of one channel, all in one piece, on the left side.
Pcm Apply(const OwnedList& list, const Pcm& dry)
{
    EffectChain chain;
    chain.Build(list.Get(), {rateHz, 2});
    return TakeSide(Through(chain, MakeStereo(dry, dry)), 0);
}

Pcm GetSamples(const FormulaFile& file, int sampleFrames)
{
    Pcm samples;
    for (int i = 0; i < sampleFrames; ++i) {
        samples.push_back(static_cast<float>(file.GetStored(i, 0)));
    }
    return samples;
}

void ExpectHeard(const Rendering& heard, const Pcm& expected)
{
    ASSERT_GE(heard.GetFrames(), expected.size());
    for (size_t i = 0; i < expected.size(); ++i) {
        ASSERT_NEAR(heard.At(i), expected[i], roundingError) << "sample frame " << i;
    }
}

TEST(OpenALEffects, TheyWorkOnThePcmInTheOrderOfTheListWhateverTheBlocks)
{
    OwnedList list;
    list.Add(SndFXEcho, echo).Add(SndFXParamEq, equaliser);
    OfflineRig rig;
    const auto file = MakeFile({rateHz}, Sine(300, 0.1, rateHz));
    rig.Play(*file, 0, list.Get());
    for (const unsigned long ms : {41ul, 97ul, 62ul, 200ul, 533ul}) {
        rig.Step(ms);
    }
    ExpectHeard(rig.Heard(), Apply(list, GetSamples(*file, rateHz * 933 / 1000)));
}

TEST(OpenALEffects, TheyGoByTheRateThatAFileHasWhenItIsRead)
{
    OwnedList list;
    list.Add(SndFXEcho, echo);
    OfflineRig rig;
    const auto file =
        MakeFile({2000, 8000}, [](int sampleFrame, int) { return sampleFrame < 100 ? 0.5 : 0.0; });
    file->TurnOutToHave(22050);
    rig.Play(*file, 0, list.Get());
    rig.StepTimes(10, 50);
    const Rendering heard = rig.Heard();
    EXPECT_GT(heard.At(rateHz / 4 + 50), 0.1) << "the first echo after a quarter of a second";
    EXPECT_LT(heard.Level(rateHz / 10, rateHz / 5, 0), 0.001);
}

TEST(OpenALEffects, TheEndComesWhenTheTailHasFallenBySixtyDecibels)
{
    OwnedList list;
    list.Add(SndFXEcho, echo);
    OfflineRig rig;
    const auto file = MakeFile({4410, rateHz}, Constant(0.8));
    SndChannel* const channel = rig.Play(*file, 0, list.Get());
    rig.StepTimes(3, 50);
    for (int update = 0; update < 60 && rig.TakeEvents().empty(); ++update) {
        EXPECT_EQ(channel->GetRemainLength(), 0u);
        rig.Step(50);
    }
    // The n-th echo has 0.8 * 0.5 * 0.5^(n - 1): the ninth, after 2.25 s, is the last above 0.001. It lasts
    // 100 ms, and then another could follow for 250 ms.
    const Rendering heard = rig.Heard();
    const Pcm dry = GetSamples(*file, 4410);
    Pcm sound(static_cast<size_t>(rateHz) * 235 / 100);
    std::copy(dry.begin(), dry.end(), sound.begin());
    ExpectHeard(heard, Apply(list, sound));
    const double endMs = 1000.0 * static_cast<double>(heard.GetFrames()) / rateHz;
    EXPECT_NEAR(endMs, 2250 + 100 + 250 + 20, 60.0);
    EXPECT_EQ(rig.GetFileAtEnd(), file.get());
}

TEST(OpenALEffects, AFileAppendedDuringTheTailGoesOnSoonAndThroughTheSameEffects)
{
    OwnedList list;
    list.Add(SndFXEcho, echo);
    OfflineRig rig;
    const auto first = MakeFile({4410, rateHz}, Constant(0.8));
    const auto second = MakeFile({8820, rateHz}, Constant(0.25));
    SndChannel* const channel = rig.Play(*first, 0, list.Get());
    rig.StepTimes(4, 50);
    rig.Append(*channel, *first, *second);
    rig.Step(4);
    EXPECT_EQ(channel->GetRemainLength(), 0u) << "the first file has long been over";
    rig.Step(46);
    const std::vector<DriverEvent> expected = {{SndFileChanged, channel, first.get(), second.get(), 250}};
    EXPECT_EQ(rig.TakeEvents(), expected);
    rig.StepTimes(8, 50);
    EXPECT_EQ(channel->GetRemainLength(), 0u);

    const Rendering heard = rig.Heard();
    size_t begin = rateHz / 5;
    while (heard.At(begin) < 0.05) {
        ++begin;
    }
    EXPECT_LE(begin, rateHz * 210u / 1000) << "no more than 10 ms of tail were queued";
    Pcm dry = GetSamples(*first, 4410);
    dry.resize(begin);
    const Pcm added = GetSamples(*second, 8820);
    dry.insert(dry.end(), added.begin(), added.end());
    dry.resize(heard.GetFrames());
    ExpectHeard(heard, Apply(list, dry));
}

TEST(OpenALEffects, ALoopHasNoTailAndItsEchoesGoOnOverItsSeams)
{
    OwnedList list;
    list.Add(SndFXEcho, echo);
    OfflineRig rig;
    const auto loop = MakeFile({4410, rateHz}, Constant(0.1));
    rig.Play(*loop, ChanLooping, list.Get());
    rig.StepTimes(20, 50);
    // 0.05 dry and 0.05 * (1 + 1/2 + 1/4) of the echoes so far.
    EXPECT_NEAR(rig.Heard().samples.back(), 0.05 + 0.05 * 1.75, 2 * roundingError);
    EXPECT_TRUE(rig.TakeEvents().empty());
}

TEST(OpenALEffects, GettersTellWhatIsAppliedAndTheRateIsFixed)
{
    OwnedList list;
    list.Add(SndFXEcho, FXEcho{150, -20, 1, 5000, 7});
    OfflineRig rig;
    const auto file = MakeFile({rateHz}, Constant(0.1));
    SndChannel* const channel = rig.Play(*file, ChanPositional, list.Get());
    FXEcho live{};
    ASSERT_TRUE(channel->GetFXEcho(&live));
    EXPECT_EQ(live.wetDryMix, 100.0f);
    EXPECT_EQ(live.feedback, 0.0f);
    EXPECT_EQ(live.rightDelay, 2000.0f);
    FXGargle other{};
    EXPECT_FALSE(channel->GetFXGargle(&other));
    EXPECT_FALSE(channel->SetFrequency(22050));
    channel->Stop();
    EXPECT_FALSE(channel->GetFXEcho(&live));
}

} // namespace
} // namespace Quon
