#include "tests/drivers/FormulaFile.h"
#include "tests/drivers/OfflineRig.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <numbers>

namespace Quon
{
namespace
{

constexpr int rateHz = 44100;

const std::string path = (GetTestFolder() / "card.wav").string();

// An output of OpenAL that takes sound at the speed of a sound card and writes it to a file.
bool SetUpWaveOutput()
{
    const std::string configuration = (GetTestFolder() / "card.conf").string();
    std::ofstream(configuration) << "[wave]\nfile = " << path << "\n";
    return setenv("ALSOFT_DRIVERS", "wave", 1) == 0 && setenv("ALSOFT_CONF", configuration.c_str(), 1) == 0;
}

const bool isWaveOutput = SetUpWaveOutput();

TEST(OpenALWaveOut, SoundsThatAreStoppedAndTakenUpInTheMiddleOfAWaveDoNotClickOnACardEither)
{
    ASSERT_TRUE(isWaveOutput);
    const auto file = MakeFile({100 * rateHz, rateHz}, Sine(97, 0.8, rateHz));
    DriverRig rig("HarmonetOpenAL");
    // With the longest read-ahead, so that a machine that is busy with other things breaks nothing off.
    const int streamLength = 1000;
    ASSERT_TRUE(rig.Open(rateHz, 8, streamLength));
    for (int i = 0; i < 20; ++i) {
        SndChannel* channel = nullptr;
        const auto play = [&] { channel = rig.Play(*file); };
        const auto stop = [&] { channel->Stop(); };
        // Within an update settings are held back to its end, outside of it they are not.
        if (i % 2 == 0) {
            rig.Step(40, play);
        }
        else {
            play();
        }
        ASSERT_TRUE(file->WaitUntilRead(file->GetFramesRead() + rateHz / 3 + i * 41));
        if (i % 3 == 0) {
            rig.Step(40, stop);
        }
        else {
            stop();
        }
        ASSERT_FALSE(HasFailure());
    }
    rig.Close();
    const Rendering heard = ReadRendering(path);
    ASSERT_GT(heard.GetFrames(), static_cast<size_t>(20 * rateHz / 10));
    EXPECT_NEAR(heard.Level(rateHz / 10, rateHz / 5, 0), 0.8 / std::numbers::sqrt2, 0.2);
    EXPECT_LT(heard.LargestStep(1, heard.GetFrames()), 2 * 0.8 * 2 * std::numbers::pi * 97 / rateHz);
}

TEST(OpenALWaveOut, HrtfIsTheDevicesAffairUnlessItIsAskedFor)
{
    const std::pair<const char*, bool> rows[] = {{nullptr, false}, {"0", false}, {"1", true}};
    for (const auto& [option, isOn] : rows) {
        SCOPED_TRACE(option ? option : "not set");
        const auto file = MakeFile({10 * rateHz, rateHz}, [](int i, int) { return i < 4 ? 0.9 : 0.0; });
        DriverRig rig("HarmonetOpenAL");
        rig.GetOptions().Set("OpenALHRTF", option);
        ASSERT_TRUE(rig.Open(rateHz, 8));
        SndChannel* const channel = rig.Create(*file, ChanPositional);
        channel->SetPosition({1, 0, -1});
        channel->Play();
        ASSERT_TRUE(file->WaitUntilRead(rateHz / 2));
        rig.Close();
        const Rendering heard = ReadRendering(path);
        const size_t left = heard.FindFirst(0.02, 0);
        ASSERT_LT(left, heard.GetFrames());
        EXPECT_EQ(left > heard.FindFirst(0.02, 1) + 8, isOn);
    }
}

/// A gap in what was heard of a sound whose height grows all the time.
struct Gap
{
    size_t sampleFrames;
    double lost; ///< Sample frames of the sound that fell into it; less than 0: that came again.
};

std::vector<Gap> FindGaps(const Rendering& heard, double risePerFrame)
{
    std::vector<Gap> gaps;
    size_t last = heard.FindFirst(0.01, 0);
    for (size_t i = last + 1; i < heard.GetFrames(); ++i) {
        if (std::abs(heard.At(i)) <= 0.01) {
            continue;
        }
        if (i > last + 1) {
            // Where it goes on it first rises for some milliseconds.
            constexpr size_t rise = 441;
            const double step = heard.At(i + rise) - heard.At(last);
            gaps.push_back({i - last - 1, step / risePerFrame - rise - 1});
            i += rise;
        }
        last = i;
    }
    return gaps;
}

// What is read ahead is heard while the disk is waited for.
TEST(OpenALWaveOut, ASlowDiskLeavesGapsShorterThanItsReadsAndLosesNothing)
{
    constexpr int length = 10 * rateHz;
    const auto slow = MakeFile({length}, [](int i, int) { return 0.25 + 0.25 * i / length; });
    slow->BeSlow(25, std::chrono::milliseconds(300));
    const auto beside = MakeFile({length}, Constant(0.0));
    DriverRig rig("HarmonetOpenAL");
    ASSERT_TRUE(rig.Open(rateHz, 8));
    SndChannel* const channel = rig.Play(*slow);
    rig.Play(*beside);
    while (slow->GetFramesRead() < 3 * rateHz) {
        rig.Step(40);
        EXPECT_LE(channel->GetRemainLength(), 10000u);
        ASSERT_TRUE(slow->WaitUntilRead(slow->GetFramesRead() + 1));
    }
    channel->Stop();
    slow->Forbid();
    ASSERT_TRUE(beside->WaitUntilRead(beside->GetFramesRead() + rateHz / 4));
    rig.Close();
    EXPECT_EQ(slow->GetForbiddenTouches(), 0);
    const std::vector<Gap> gaps = FindGaps(ReadRendering(path), 0.25 / length);
    EXPECT_GE(gaps.size(), 1u) << "the disk was not slow";
    for (const Gap& gap : gaps) {
        EXPECT_LT(static_cast<double>(gap.sampleFrames) / rateHz, slow->GetSlowestRead().count());
        EXPECT_NEAR(gap.lost, 0.0, 64.0);
    }
}

TEST(OpenALWaveOut, AGameFrameOfTwoSecondsIsHeardWithoutAGapAndItsEventsComeInOneUpdate)
{
    constexpr int length = 7 * rateHz / 10;
    const auto rising = [](int offset) {
        return [offset](int i, int) { return 0.25 + 0.25 * (offset + i) / (3 * length); };
    };
    const auto first = MakeFile({length}, rising(0));
    const auto second = MakeFile({length}, rising(length));
    const auto third = MakeFile({length}, rising(2 * length));
    const auto beside = MakeFile({20 * rateHz}, Constant(0.0));
    DriverRig rig("HarmonetOpenAL");
    ASSERT_TRUE(rig.Open(rateHz, 8, 1000));
    first->Add(second.get());
    first->Add(third.get());
    rig.Play(*first);
    rig.Play(*beside);
    rig.Step(40);
    // Until the last sample frame has certainly been heard.
    ASSERT_TRUE(third->WaitUntilRead(length));
    ASSERT_TRUE(beside->WaitUntilRead(beside->GetFramesRead() + rateHz));
    EXPECT_TRUE(rig.TakeEvents().empty());
    rig.Step(2000);
    std::vector<int> kinds;
    for (const DriverEvent& event : rig.TakeEvents()) {
        kinds.push_back(event.kind);
    }
    EXPECT_EQ(kinds, (std::vector<int>{SndFileChanged, SndFileChanged, SndChannelEnded}));
    rig.Close();
    const Rendering heard = ReadRendering(path);
    EXPECT_TRUE(FindGaps(heard, 0.25 / (3 * length)).empty());
    const size_t begin = heard.FindFirst(0.01, 0);
    EXPECT_NEAR(heard.At(begin + 3 * length - 1), 0.5, 0.001);
    EXPECT_NEAR(heard.At(begin + 3 * length + 100), 0.0, 0.001);
}

} // namespace
} // namespace Quon
