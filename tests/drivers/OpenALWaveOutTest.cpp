#include "harmonet/definitions/EnvReverbPresets.h"
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

TEST(OpenALWaveOut, AChangeOfRoomDoesNotClickOnACardEither)
{
    const FXEnvReverb* const rooms[] = {
        &fxEnvReverbHangar, &fxEnvReverbPaddedCell, nullptr, &fxEnvReverbUnderwater};
    const auto file = MakeFile({100 * rateHz, rateHz}, Sine(97, 0.2, rateHz));
    DriverRig rig("HarmonetOpenAL");
    const int streamLength = 1000;
    ASSERT_TRUE(rig.Open(rateHz, 8, streamLength));
    SndChannel* const channel = rig.Create(*file, ChanPositional);
    channel->SetPosition({0, 0, -1});
    channel->FadeIn(300);
    channel->Play();
    for (int i = 0; i < 20; ++i) {
        const FXEnvReverb* const room = rooms[i % 4];
        const auto change = [&] {
            if (room) {
                EXPECT_TRUE(rig.GetDriver().SetFXEnvReverb(room, 2, 0));
            }
            else {
                rig.GetDriver().ResetFXEnvReverb(0);
            }
        };
        // Within an update settings are held back to its end, outside of it they are not.
        if (i % 3 == 0) {
            change();
        }
        else {
            rig.Step(40, change);
        }
        ASSERT_TRUE(file->WaitUntilRead(file->GetFramesRead() + rateHz / (i % 2 == 0 ? 3 : 15)));
    }
    rig.Close();
    const Rendering heard = ReadRendering(path);
    const double dryStep = 0.2 * 0.5957 * 2 * std::numbers::pi * 97 / rateHz;
    EXPECT_LT(heard.LargestBend(1, heard.GetFrames()), 2e-4);
    EXPECT_LT(heard.LargestStep(1, heard.GetFrames()), 3 * dryStep);
    EXPECT_GT(heard.LargestStep(1, heard.GetFrames()), 1.1 * dryStep) << "rooms are heard";
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

} // namespace
} // namespace Quon
