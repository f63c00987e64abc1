#include "harmonet/definitions/EnvReverbPresets.h"
#include "harmonet/definitions/FXRecords.h"
#include "tests/drivers/FickleMachine.h"
#include "tests/drivers/FormulaFile.h"
#include "tests/drivers/OfflineRig.h"
#include "tests/drivers/effects/OwnedList.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <thread>

namespace Quon
{
namespace
{

namespace fs = std::filesystem;

constexpr int rateHz = 44100;

const fs::path cardPath = GetTestFolder() / "card.wav";

// An output of OpenAL that writes to a file at the speed of a sound card, and begins it anew when it is
// opened again.
bool SetUpWaveOutput()
{
    const std::string configuration = (GetTestFolder() / "card.conf").string();
    std::ofstream(configuration) << "[wave]\nfile = " << cardPath.string() << "\n";
    return setenv("ALSOFT_DRIVERS", "wave", 1) == 0 && setenv("ALSOFT_CONF", configuration.c_str(), 1) == 0;
}

const bool isWaveOutput = SetUpWaveOutput();

/// The driver on a machine whose sound card goes away and comes back. Nothing asks how long a thing took.
class OpenALLoss : public testing::Test
{
protected:
    OpenALLoss()
    {
        EXPECT_TRUE(isWaveOutput);
        fs::remove(cardPath);
        rig = std::make_unique<DriverRig>(machine.MakeDriver());
    }

    /// A file that lives as long as the test.
    FormulaFile& Make(int sampleFrames, FormulaFile::Formula formula)
    {
        files.push_back(MakeFile({sampleFrames, rateHz}, std::move(formula)));
        return *files.back();
    }

    bool StepUntil(const std::function<bool()>& condition)
    {
        const auto giveUp = std::chrono::steady_clock::now() + std::chrono::minutes(2);
        while (!condition() && std::chrono::steady_clock::now() < giveUp) {
            rig->Step(40);
            std::this_thread::yield();
        }
        return condition();
    }

    /// Without a device, waits for the end of all that plays; in the order of the events, their kinds.
    std::vector<int> RunToEnds(int ends)
    {
        std::vector<int> kinds;
        rig->onEvent = [&](const DriverEvent& event) {
            kinds.push_back(event.kind);
            ends -= event.kind == SndChannelEnded;
        };
        EXPECT_TRUE(StepUntil([&] { return ends <= 0; }));
        rig->onEvent = nullptr;
        return kinds;
    }

    /// What the card has played since it was opened last, once that is `sampleFrames`.
    Rendering WaitForCard(std::uintmax_t sampleFrames)
    {
        constexpr std::uintmax_t mostFrameBytes = 8;
        EXPECT_TRUE(StepUntil([&] {
            std::error_code missing;
            const std::uintmax_t size = fs::file_size(cardPath, missing);
            return !missing && size > sampleFrames * mostFrameBytes;
        }));
        rig->Close();
        return ReadRendering(cardPath.string());
    }

    FickleMachine machine;
    std::vector<std::unique_ptr<FormulaFile>> files;
    std::unique_ptr<DriverRig> rig;
};

TEST_F(OpenALLoss, WithoutADeviceItOpensOnlyIfItIsToldToGoOnInSilence)
{
    machine.isThere = false;
    const std::pair<const char*, bool> rows[] = {{nullptr, false}, {"0", false}, {"2", false}, {"1", true}};
    for (const auto& [option, opens] : rows) {
        SCOPED_TRACE(option ? option : "not set");
        rig = std::make_unique<DriverRig>(machine.MakeDriver());
        rig->GetOptions().Set("OpenALFallback", option);
        EXPECT_EQ(rig->Open(rateHz, 4), opens);
    }
}

TEST_F(OpenALLoss, InSilenceSoundsEndGoOnToTheNextFileFadeAndStopAsIfTheyWereHeard)
{
    FormulaFile& first = Make(rateHz / 5, Constant(0.1));
    FormulaFile& second = Make(rateHz / 5, Constant(0.1));
    FormulaFile& faded = Make(rateHz, Constant(0.1));
    FormulaFile& stopped = Make(rateHz, Constant(0.1));
    first.Add(&second);
    machine.isThere = false;
    rig->GetOptions().Set("OpenALFallback", "1");
    ASSERT_TRUE(rig->Open(rateHz, 4));
    for (int round = 0; round < 2; ++round) {
        SCOPED_TRACE(round == 0 ? "never had a device" : "again, with the same channels");
        SndChannel* const queue = rig->Create(first);
        EXPECT_EQ(queue->GetRemainLength(), 200u);
        queue->Play();
        SndChannel* const fading = rig->Play(faded, ChanLooping | ChanPositional);
        fading->SetPosition({1, 2, 3});
        fading->FadeOut(50);
        SndChannel* const stopping = rig->Play(stopped, ChanLooping);
        ASSERT_TRUE(stopped.WaitUntilRead(stopped.GetFramesRead() + rateHz));
        stopping->Stop();
        EXPECT_EQ(stopping->GetSndFile(), &stopped);
        const std::vector<int> kinds = RunToEnds(2);
        EXPECT_EQ(std::count(kinds.begin(), kinds.end(), static_cast<int>(SndFileChanged)), 1);
        EXPECT_EQ(kinds.size(), 3u);
        first.Rewind();
        second.Rewind();
        first.Add(&second);
    }
}

TEST_F(OpenALLoss, RemainingLengthOnlyFallsWhileTheDeviceGoesAndComesBack)
{
    FormulaFile& file = Make(3 * rateHz / 4, Constant(0.1));
    ASSERT_TRUE(rig->Open(rateHz, 4));
    SndChannel* const channel = rig->Create(file);
    unsigned long last = channel->GetRemainLength();
    EXPECT_EQ(last, 750u);
    channel->Play();
    bool hasEnded = false;
    rig->onEvent = [&](const DriverEvent&) { hasEnded = true; };
    EXPECT_TRUE(StepUntil([&] {
        const unsigned long now = channel->GetRemainLength();
        EXPECT_LE(now, last);
        if (now / 100 != last / 100) {
            machine.hasGoneOnce = true;
        }
        last = now;
        return hasEnded || HasFailure();
    }));
    EXPECT_GT(machine.timesOpened, 2);
}

// The sound's height tells where in the sound one is.
TEST_F(OpenALLoss, WhenADeviceComesTheSoundIsHeardFromWhereItHasGotToAndWithItsSettings)
{
    constexpr int length = 20 * rateHz;
    FormulaFile& ramp = Make(length, [](int i, int) { return 0.5 + 0.5 * i / length; });
    ASSERT_TRUE(rig->Open(rateHz, 4));
    SndChannel* const channel = rig->Play(ramp);
    ASSERT_TRUE(ramp.WaitUntilRead(rateHz / 2));
    machine.isThere = false;
    ASSERT_TRUE(StepUntil([&] { return !machine.isThere && ramp.GetFramesRead() > rateHz; }));
    channel->SetGain(0.5f);
    rig->GetDriver().SetMainGain(0.5f);
    const unsigned long leftBefore = channel->GetRemainLength();
    fs::remove(cardPath);
    machine.isThere = true;
    const Rendering heard = WaitForCard(rateHz / 4);
    const size_t begin = heard.FindFirst(0.01, 0);
    ASSERT_LT(begin + rateHz / 10, heard.GetFrames());
    const auto placeAt = [&](size_t i) { return (heard.At(i) / 0.25 - 0.5) / 0.5 * length; };
    // Behind the first few milliseconds, in which it rises.
    const double place = placeAt(begin + 441) - 441;
    EXPECT_GT(place, length - static_cast<double>(leftBefore + 1) * rateHz / 1000);
    EXPECT_LT(place, ramp.GetFramesRead());
    EXPECT_LT(heard.At(begin), 0.05) << "it rises";
    EXPECT_NEAR(placeAt(begin + 4410), place + 4410, 200) << "and has no gap";
}

// Clicks with half a second between them, which a room fills.
TEST_F(OpenALLoss, ARoomThatIsSetWithoutADeviceIsHeardOnTheFirstOne)
{
    FormulaFile& clicks = Make(rateHz / 2, [](int i, int) { return i < 441 ? 0.9 : 0.0; });
    machine.isThere = false;
    rig->GetOptions().Set("OpenALFallback", "1");
    ASSERT_TRUE(rig->Open(rateHz, 4));
    SoundCaps caps;
    EXPECT_TRUE(rig->GetDriver().GetCaps(caps));
    EXPECT_EQ(caps.GetFlags(), capEnvReverbSource);
    SndChannel* const channel = rig->Play(clicks, ChanLooping | ChanPositional);
    channel->SetPosition({0, 0, -1});
    EXPECT_TRUE(rig->GetDriver().SetFXEnvReverb(&fxEnvReverbHangar, 0, 0));
    const FXEnvReverbSourceProperties muted = {-10000, 0, 0, 0, 0, 0, 0, 0, 0};
    EXPECT_TRUE(channel->SetFXEnvReverbSourceProperties(&muted));
    Testing::OwnedList list;
    list.Add(SndFXEnvReverb, fxEnvReverbCave);
    FormulaFile& quiet = Make(rateHz, Constant(0.0));
    FXEnvReverb own{};
    EXPECT_TRUE(rig->Play(quiet, 0, list.Get())->GetFXEnvReverbListenerProperties(&own));
    machine.isThere = true;
    const Rendering heard = WaitForCard(rateHz);
    size_t reverberant = 0;
    for (size_t i = 0; i < heard.GetFrames(); ++i) {
        reverberant += std::abs(heard.At(i)) > 0.001 ? 1 : 0;
        ASSERT_LT(std::abs(heard.At(i)), 0.4) << "the direct sound is off";
    }
    EXPECT_GT(reverberant, heard.GetFrames() / 3);
}

// The card's file begins on a full disk, so that the first block that reaches the disk breaks it.
TEST_F(OpenALLoss, ACardThatBreaksInTheMiddleIsNoticedAndTheNextOneIsTaken)
{
    fs::create_symlink("/dev/full", cardPath);
    FormulaFile& file = Make(rateHz, Constant(0.5));
    ASSERT_TRUE(rig->Open(rateHz, 4));
    fs::remove(cardPath);
    rig->Play(file, ChanLooping);
    const Rendering heard = WaitForCard(rateHz / 4);
    EXPECT_EQ(machine.timesOpened, 2);
    EXPECT_LT(heard.FindFirst(0.49, 1), heard.GetFrames());
}

TEST_F(OpenALLoss, ADriverThatIsDeletedInSilenceLeavesItsFilesAloneFromThenOn)
{
    FormulaFile& file = Make(rateHz, Constant(0.1));
    ASSERT_TRUE(rig->Open(rateHz, 4));
    rig->Play(file, ChanLooping);
    ASSERT_TRUE(file.WaitUntilRead(1));
    machine.isThere = false;
    ASSERT_TRUE(file.WaitUntilRead(rateHz));
    rig->Close();
    file.Forbid();
    DriverRig next("HarmonetOpenAL");
    FormulaFile& other = Make(rateHz, Constant(0.1));
    ASSERT_TRUE(next.Open(rateHz, 4));
    next.Play(other);
    ASSERT_TRUE(other.WaitUntilRead(rateHz / 4));
    EXPECT_EQ(file.GetForbiddenTouches(), 0);
}

} // namespace
} // namespace Quon
