#include "harmonet/definitions/EnvReverbPresets.h"
#include "tests/drivers/FickleMachine.h"
#include "tests/drivers/OfflineRig.h"
#include "tests/drivers/effects/OwnedList.h"
#include "tests/support/Environment.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>

namespace Quon
{
namespace
{

namespace fs = std::filesystem;

constexpr int rateHz = 44100;

const fs::path cardPath = GetTestFolder() / "card.wav";

// An output of OpenAL that writes to a file at the speed of a sound card, and begins it anew when it is
// opened again.
bool SetUpCard()
{
    const std::string configuration = (GetTestFolder() / "card.conf").string();
    std::ofstream(configuration) << "[wave]\nfile = " << cardPath.string() << "\n";
    return SetEnvironment("ALSOFT_DRIVERS", "wave") && SetEnvironment("ALSOFT_CONF", configuration);
}

const bool isCard = SetUpCard();

/// The driver on a machine whose sound card is removed and returns. No test depends on elapsed time.
class OpenALCard : public testing::Test
{
protected:
    OpenALCard()
    {
        EXPECT_TRUE(isCard);
        fs::remove(cardPath);
    }

    /// What the card has played since it was opened last.
    Rendering CloseAndRead()
    {
        rig.Close();
        return ReadRendering(cardPath.string());
    }

    /// The same, once that is `sampleFrames`.
    Rendering WaitForCard(std::uintmax_t sampleFrames)
    {
        constexpr std::uintmax_t mostFrameBytes = 8;
        EXPECT_TRUE(rig.StepUntil([&] {
            std::error_code missing;
            const std::uintmax_t size = fs::file_size(cardPath, missing);
            return !missing && size > sampleFrames * mostFrameBytes;
        }));
        return CloseAndRead();
    }

    FickleMachine machine;
    DriverRig rig{machine.MakeDriver()};
};

/// How often a steadily rising sound is interrupted. A busy machine can cause gaps, but none of the sound may
/// be lost in them.
int CountGaps(const Rendering& heard, double risePerFrame, double tolerance = 64.0)
{
    int gaps = 0;
    size_t last = heard.FindFirst(0.01, 0);
    for (size_t i = last + 1; i < heard.GetFrames(); ++i) {
        if (std::abs(heard.At(i)) <= 0.01) {
            continue;
        }
        if (i > last + 1) {
            // Where it continues, it first fades in for some milliseconds.
            constexpr size_t rise = 441;
            const double step = heard.At(i + rise) - heard.At(last);
            EXPECT_NEAR(step / risePerFrame, rise + 1.0, tolerance) << "lost or heard twice";
            i += rise;
            ++gaps;
        }
        last = i;
    }
    return gaps;
}

TEST_F(OpenALCard, ASlowDiskCausesUnderrunsWithoutLoss)
{
    constexpr int length = 10 * rateHz;
    FormulaFile& slow = rig.Make({length}, [](int i, int) { return 0.25 + 0.25 * i / length; });
    slow.BeSlow(25, std::chrono::milliseconds(300));
    FormulaFile& beside = rig.Make({length}, Constant(0.0));
    ASSERT_TRUE(rig.Open(rateHz, 8));
    SndChannel* const channel = rig.Play(slow);
    rig.Play(beside);
    while (slow.GetFramesRead() < 3 * rateHz) {
        rig.Step(40);
        EXPECT_LE(channel->GetRemainLength(), 10000U);
        ASSERT_TRUE(slow.WaitUntilRead(slow.GetFramesRead() + 1));
    }
    channel->Stop();
    slow.Forbid();
    ASSERT_TRUE(beside.WaitUntilRead(beside.GetFramesRead() + rateHz / 4));
    const Rendering heard = CloseAndRead();
    EXPECT_EQ(slow.GetForbiddenTouches(), 0);
    EXPECT_GE(CountGaps(heard, 0.25 / length), 1) << "the disk was not slow";
}

// The read-ahead never reaches its target; Stop() still waits for one read only.
TEST_F(OpenALCard, ASoundOnATooSlowDiskCanBeStopped)
{
    constexpr int length = 10 * rateHz;
    FormulaFile& slow = rig.Make({length}, Constant(0.1));
    slow.BeSlow(1, std::chrono::milliseconds(30));
    ASSERT_TRUE(rig.Open(rateHz, 8));
    SndChannel* const channel = rig.Play(slow);
    ASSERT_TRUE(slow.WaitUntilRead(rateHz / 4));
    channel->Stop();
    EXPECT_LT(slow.GetFramesRead(), length);
}

TEST_F(OpenALCard, ALongGameFrameLosesNothingAndReportsInOneUpdate)
{
    constexpr int length = 7 * rateHz / 10;
    const std::vector<FormulaFile*> parts = rig.MakeQueue(
        {length, length, length}, {}, [](int i, int) { return 0.25 + 0.25 * i / (3 * length); });
    FormulaFile& beside = rig.Make({20 * rateHz}, Constant(0.0));
    ASSERT_TRUE(rig.Open(rateHz, 8, 1000));
    rig.Play(*parts[0]);
    rig.Play(beside);
    rig.Step(40);
    // Long enough that the last sample frame has been heard.
    ASSERT_TRUE(parts[2]->WaitUntilRead(length));
    ASSERT_TRUE(beside.WaitUntilRead(beside.GetFramesRead() + rateHz));
    EXPECT_TRUE(rig.TakeEvents().empty());
    rig.Step(2000);
    std::vector<int> kinds;
    for (const DriverEvent& event : rig.TakeEvents()) {
        kinds.push_back(event.kind);
    }
    EXPECT_EQ(kinds, (std::vector<int>{SndFileChanged, SndFileChanged, SndChannelEnded}));
    const Rendering heard = CloseAndRead();
    CountGaps(heard, 0.25 / (3 * length));
    EXPECT_NEAR(*std::max_element(heard.samples.begin(), heard.samples.end()), 0.5, 0.001);
}

TEST_F(OpenALCard, OpensWithoutADeviceOnlyForSilenceOrRendering)
{
    // OpenAL cannot write to a folder, so it finds no card.
    fs::create_directory(cardPath);
    const std::pair<const char*, bool> rows[] = {{nullptr, false}, {"0", false}, {"2", false}, {"1", true}};
    for (const auto& [option, opens] : rows) {
        SCOPED_TRACE(option ? option : "not set");
        DriverRig silent("HarmonetOpenAL");
        silent.GetOptions().Set("OpenALFallback", option);
        EXPECT_EQ(silent.Open(rateHz, 4), opens);
    }
    OfflineRig rendered;
    rendered.Step(1000);
    EXPECT_EQ(rendered.Heard().GetFrames(), 44100U);
}

// The level encodes the position in the sound.
TEST_F(OpenALCard, ANewDevicePlaysFromTheCurrentPositionWithAllSettings)
{
    constexpr int length = 20 * rateHz;
    FormulaFile& ramp = rig.Make({length}, [](int i, int) { return 0.5 + 0.5 * i / length; });
    ASSERT_TRUE(rig.Open(rateHz, 4, 1000));
    SndChannel* const channel = rig.Play(ramp);
    ASSERT_TRUE(ramp.WaitUntilRead(rateHz / 2));
    machine.isThere = false;
    ASSERT_TRUE(rig.StepUntil([&] { return ramp.GetFramesRead() > rateHz; }));
    channel->SetGain(0.5F);
    rig.GetDriver().SetMainGain(0.5F);
    const unsigned long leftBefore = channel->GetRemainLength();
    fs::remove(cardPath);
    machine.isThere = true;
    const Rendering heard = WaitForCard(rateHz);
    const size_t begin = heard.FindFirst(0.01, 0);
    ASSERT_LT(begin + rateHz / 10, heard.GetFrames());
    // After the first few milliseconds, in which it fades in.
    const double place = (heard.At(begin + 441) / 0.25 - 0.5) / 0.5 * length - 441;
    EXPECT_GT(place, length - static_cast<double>(leftBefore + 1) * rateHz / 1000);
    EXPECT_LT(place, ramp.GetFramesRead());
    EXPECT_LT(heard.At(begin), 0.05) << "it rises";
    CountGaps(heard, 0.25 * 0.5 / length, 200.0);
}

// Clicks half a second apart, which a room fills.
TEST_F(OpenALCard, ARoomSetWithoutADeviceIsAppliedToTheFirstOne)
{
    FormulaFile& clicks = rig.Make({rateHz / 2}, [](int i, int) { return i < 441 ? 0.9 : 0.0; });
    machine.isThere = false;
    rig.GetOptions().Set("OpenALFallback", "1");
    ASSERT_TRUE(rig.Open(rateHz, 4, 1000));
    SoundCaps caps;
    EXPECT_TRUE(rig.GetDriver().GetCaps(caps));
    EXPECT_EQ(caps.GetFlags(), capEnvReverbSource);
    SndChannel* const channel = rig.Play(clicks, ChanLooping | ChanPositional);
    channel->SetPosition({0, 0, -1});
    EXPECT_TRUE(rig.GetDriver().SetFXEnvReverb(&fxEnvReverbHangar, 0, 0));
    const FXEnvReverbSourceProperties muted = {-10000, 0, 0, 0, 0, 0, 0, 0, 0};
    EXPECT_TRUE(channel->SetFXEnvReverbSourceProperties(&muted));
    Testing::OwnedList list;
    list.Add(SndFXEnvReverb, fxEnvReverbCave);
    FXEnvReverb own{};
    SndChannel* const quiet = rig.Play(rig.Make({rateHz}, Constant(0.0)), 0, list.Get());
    EXPECT_TRUE(quiet->GetFXEnvReverbListenerProperties(&own));
    machine.isThere = true;
    const Rendering heard = WaitForCard(rateHz);
    size_t reverberant = 0;
    for (size_t i = 0; i < heard.GetFrames(); ++i) {
        reverberant += std::abs(heard.At(i)) > 0.001 ? 1 : 0;
        ASSERT_LT(std::abs(heard.At(i)), 0.4) << "the direct sound is off";
    }
    // One click and its reverberation, which is many times as long: a busy machine can lose the others.
    EXPECT_GT(reverberant, 441 * 5U);
}

#if !defined(_WIN32)
// The card's file is on a full disk, so that the first block that is written breaks the device.
TEST_F(OpenALCard, ABrokenDeviceIsReplacedWithHrtfKept)
{
    fs::create_symlink("/dev/full", cardPath);
    rig.GetOptions().Set("OpenALHRTF", "1");
    ASSERT_TRUE(rig.Open(rateHz, 4));
    fs::remove(cardPath);
    FormulaFile& clicks = rig.Make({rateHz / 4}, [](int i, int) { return i < 4 ? 0.9 : 0.0; });
    rig.Play(clicks, ChanPositional | ChanLooping)->SetPosition({1, 0, -1});
    const Rendering heard = WaitForCard(rateHz);
    EXPECT_EQ(machine.timesOpened, 2);
    const size_t left = heard.FindFirst(0.02, 0);
    ASSERT_LT(left, heard.GetFrames());
    EXPECT_GT(left, heard.FindFirst(0.02, 1) + 8);
}
#endif

} // namespace
} // namespace Quon
