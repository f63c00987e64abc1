#include "tests/drivers/FormulaFile.h"
#include "tests/drivers/OfflineRig.h"

#include <AL/alc.h>
#include <AL/alext.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>

namespace Quon
{
namespace
{

constexpr int rateHz = OfflineRig::rateHz;
constexpr float noNumber = std::numeric_limits<float>::quiet_NaN();

TEST(OpenALSound, SixteenBitsAtTheOutputsRateComeOutBitByBit)
{
    struct Row
    {
        const char* name;
        int channels;
        int bytesPerSample;
        std::vector<unsigned long> steps;
    };
    const Row rows[] = {{"mono", 1, 2, {40, 40, 40, 40, 40}}, {"stereo", 2, 2, {40, 40, 40, 40, 40}},
        {"stereo in uneven steps", 2, 2, {41, 97, 62}}, {"stereo in one step", 2, 2, {200}},
        {"8 bits", 2, 1, {200}}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        OfflineRig rig;
        const auto file = MakeFile({8000, rateHz, row.channels, row.bytesPerSample}, Scatter());
        rig.Play(*file);
        for (const unsigned long ms : row.steps) {
            rig.Step(ms);
        }
        const Rendering heard = rig.Heard();
        ASSERT_EQ(heard.GetFrames(), 8820u);
        for (int i = 0; i < 8820; ++i) {
            for (int side = 0; side < 2; ++side) {
                const double expected = i < 8000 ? file->GetStored(i, row.channels == 2 ? side : 0) : 0.0;
                ASSERT_EQ(heard.At(static_cast<size_t>(i), side), expected) << "sample frame " << i;
            }
        }
    }
}

TEST(OpenALSound, TheFileHoldsTheFloorOfTheWholeTimeAfterAnyUnevenSteps)
{
    for (const int outputHz : {8000, 11025, 22050, 44100, 48000}) {
        SCOPED_TRACE(outputHz);
        OfflineRig rig(1, outputHz);
        long elapsed = 0;
        for (unsigned long ms = 40; elapsed < 30000; ms = 40 + (ms * 7 + 3) % 31) {
            rig.Step(ms);
            elapsed += static_cast<long>(ms);
        }
        const Rendering heard = rig.Heard();
        EXPECT_EQ(heard.rateHz, outputHz);
        EXPECT_EQ(heard.GetFrames(), static_cast<size_t>(elapsed * outputHz / 1000));
    }
}

TEST(OpenALSound, GainAndMainGainAreFactorsAndWhatIsNoNumberIsIgnored)
{
    OfflineRig rig;
    const auto file = MakeFile({rateHz}, Constant(0.5));
    SndChannel* const channel = rig.Create(*file);
    channel->SetGain(0.5f);
    channel->Play();
    rig.Step(40);
    rig.Step(40, [&] { channel->SetGain(0.25f); });
    rig.Step(40, [&] { rig.GetDriver().SetMainGain(0.5f); });
    rig.Step(40, [&] {
        channel->SetGain(noNumber);
        rig.GetDriver().SetMainGain(noNumber);
    });
    rig.Step(40, [&] { channel->SetGain(7.0f); });
    rig.Step(40);
    const Rendering heard = rig.Heard();
    const std::pair<size_t, double> rows[] = {
        {0, 0.25}, {1763, 0.25}, {3527, 0.25}, {5291, 0.125}, {7055, 0.0625}, {8819, 0.0625}, {10583, 0.25}};
    for (const auto& [sampleFrame, level] : rows) {
        EXPECT_EQ(heard.At(sampleFrame), level) << sampleFrame;
    }
    EXPECT_EQ(rig.GetDriver().GetMainGain(), 0.5f);
}

/// Plays a steady signal from places around the listener and measures what arrives.
class Placed : public testing::Test
{
protected:
    static constexpr int length = 40 * rateHz;

    Placed()
        : file(MakeFile({length}, Constant(0.5)))
        , channel(rig.Create(*file, ChanPositional))
    {
    }

    void Play()
    {
        channel->Play();
        rig.Step(40);
    }

    /// The power of both sides together, in parts of what a signal of full gain gives.
    double Gain()
    {
        rig.StepTimes(2, 40);
        const Rendering heard = rig.Heard();
        const size_t end = heard.GetFrames();
        const double left = heard.Level(end - 441, end, 0);
        const double right = heard.Level(end - 441, end, 1);
        return std::hypot(left, right) / fullGain;
    }

    double Left() { return rig.Heard().At(rig.Heard().GetFrames() - 1, 0); }
    double Right() { return rig.Heard().At(rig.Heard().GetFrames() - 1, 1); }

    // Straight ahead a mono source of OpenAL comes out at 0.596 on each side.
    static constexpr double fullGain = 0.5 * 0.5957 * std::numbers::sqrt2;

    OfflineRig rig;
    std::unique_ptr<FormulaFile> file;
    SndChannel* channel;
};

TEST_F(Placed, GainFallsWithDistanceByTheInverseLawBetweenMinimumAndMaximum)
{
    struct Row
    {
        float minDistance, maxDistance, rolloff, distance;
        double gain;
    };
    const Row rows[] = {{2, 50, 1, 1, 1.0}, {2, 50, 1, 2, 1.0}, {2, 50, 1, 4, 0.5}, {2, 50, 1, 10, 0.2},
        {2, 50, 1, 50, 0.04}, {2, 50, 1, 500, 0.04}, {2, 50, 2, 4, 2.0 / (2 + 2 * 2)},
        {2, 50, 0.5f, 10, 2.0 / (2 + 0.5 * 8)}, {2, 50, 0, 40, 1.0}, {10, 100, 1, 20, 0.5},
        // Distances that say nothing: no attenuation.
        {0, 0, 1, 30, 1.0}, {10, 5, 1, 30, 1.0}};
    Play();
    for (const Row& row : rows) {
        rig.GetDriver().SetRolloffFactor(row.rolloff);
        channel->SetMinMaxDistance(row.minDistance, row.maxDistance, false);
        channel->SetPosition({0, 0, -row.distance});
        EXPECT_NEAR(Gain(), row.gain, 0.002) << row.minDistance << " to " << row.maxDistance << ", rolloff "
                                             << row.rolloff << ", at " << row.distance;
    }
}

TEST_F(Placed, CutoutSilencesASoundBeyondItsMaximumWhoeverMoves)
{
    channel->SetMinMaxDistance(100, 20, true);
    channel->SetPosition({0, 0, -19});
    Play();
    EXPECT_NEAR(Gain(), 1.0, 0.002);
    channel->SetPosition({0, 0, -21});
    EXPECT_EQ(Gain(), 0.0);
    rig.GetDriver().SetListenerPosition({0, 0, -5});
    EXPECT_NEAR(Gain(), 1.0, 0.002);
    rig.GetDriver().SetListenerPosition({0, 0, 5});
    EXPECT_EQ(Gain(), 0.0);
    channel->SetMinMaxDistance(100, 30, true);
    EXPECT_NEAR(Gain(), 1.0, 0.002);
    channel->SetMinMaxDistance(100, 20, false);
    EXPECT_NEAR(Gain(), 1.0, 0.002);
    channel->SetGain(0.5f);
    channel->SetMinMaxDistance(100, 20, true);
    EXPECT_EQ(Gain(), 0.0);
    channel->SetMinMaxDistance(100, 30, true);
    EXPECT_NEAR(Gain(), 0.5, 0.002);
}

TEST_F(Placed, ConeGainGoesFromInnerToOuterAngleInAStraightLine)
{
    channel->SetCone(60.0f, 120.0f, 0.2f);
    channel->SetPosition({0, 0, -1});
    Play();
    // By the angle between the cone's axis and the way to the listener; the cone's angles are whole openings.
    const std::pair<double, double> rows[] = {
        {0, 1.0}, {29, 1.0}, {45, 0.6}, {52.5, 0.4}, {61, 0.2}, {180, 0.2}};
    for (const auto& [degrees, gain] : rows) {
        const double radians = degrees * std::numbers::pi / 180;
        channel->SetDirection(
            {static_cast<float>(std::sin(radians)), 0, static_cast<float>(std::cos(radians))});
        EXPECT_NEAR(Gain(), gain, 0.002) << degrees;
    }
    channel->SetCone(180.0f, 180.0f, 1.0f);
    EXPECT_NEAR(Gain(), 1.0, 0.002);
}

TEST_F(Placed, ASoundIsLouderOnItsOwnSideOfTheListener)
{
    struct Row
    {
        Vector3 source, listener, front, top;
        int louder; ///< 0 left, 1 right.
    };
    const Row rows[] = {{{1, 0, 0}, {}, {0, 0, -1}, {0, 1, 0}, 1}, {{-1, 0, 0}, {}, {0, 0, -1}, {0, 1, 0}, 0},
        {{1, 0, 0}, {}, {0, 0, 1}, {0, 1, 0}, 0}, {{1, 0, 0}, {}, {0, 0, -1}, {0, -1, 0}, 0},
        {{1, 0, 0}, {2, 0, 0}, {0, 0, -1}, {0, 1, 0}, 0}, {{0, 0, -1}, {}, {1, 0, 0}, {0, 1, 0}, 0}};
    Play();
    for (const Row& row : rows) {
        channel->SetPosition(row.source);
        rig.GetDriver().SetListenerPosition(row.listener);
        rig.GetDriver().SetListenerOrientation(row.front, row.top);
        rig.StepTimes(2, 40);
        const double louder = row.louder == 0 ? Left() : Right();
        const double quieter = row.louder == 0 ? Right() : Left();
        EXPECT_GT(louder, 3 * quieter) << "row " << &row - rows;
    }
}

TEST_F(Placed, NumbersThatAreNoneOrFarTooLargeLeaveNoTrace)
{
    channel->SetMinMaxDistance(2, 50, false);
    Play();
    const Vector3 broken[] = {{noNumber, 0, 0}, {0, noNumber, 0}, {0, 0, noNumber}};
    for (const Vector3& vector : broken) {
        channel->SetPosition(vector);
        channel->SetDirection(vector);
        rig.GetDriver().SetListenerPosition(vector);
        rig.GetDriver().SetListenerOrientation(vector, {0, 1, 0});
        rig.GetDriver().SetListenerOrientation({0, 0, -1}, vector);
    }
    channel->SetMinMaxDistance(noNumber, 50, false);
    channel->SetCone(noNumber, 50, 0);
    rig.GetDriver().SetRolloffFactor(noNumber);
    const float huge = std::numeric_limits<float>::infinity();
    channel->SetPosition({huge, -huge, 3e38f});
    rig.GetDriver().SetListenerPosition({-huge, huge, 3e38f});
    rig.Step(40);
    channel->SetPosition({0, 0, -4});
    rig.GetDriver().SetListenerPosition({0, 0, 0});
    EXPECT_NEAR(Gain(), 0.5, 0.002);
}

// With a head between the ears, a sound from the right reaches the left one some 0.6 ms later.
TEST(OpenALSound, HrtfDelaysTheFarEarOfWhatHasAPlaceAndLeavesTheRestAlone)
{
    struct Row
    {
        const char* option;
        int outputHz;
        bool isOn;
    };
    const Row rows[] = {{nullptr, 44100, false}, {"-1", 44100, false}, {"0", 44100, false},
        {"1", 44100, true}, {"1", 48000, true}, {"1", 22050, false}};
    for (const Row& row : rows) {
        SCOPED_TRACE(
            std::string(row.option ? row.option : "not set") + " at " + std::to_string(row.outputHz));
        const auto click = [](int sampleFrame, int) { return sampleFrame < 4 ? 0.9 : 0.0; };
        const auto placed = MakeFile({row.outputHz, row.outputHz}, click);
        OfflineRig beside(8, row.outputHz, row.option);
        beside.Play(*placed, ChanPositional)->SetPosition({1, 0, -1});
        beside.Step(100);
        const Rendering heard = beside.Heard();
        const size_t right = heard.FindFirst(0.02, 1);
        const size_t left = heard.FindFirst(0.02, 0);
        ASSERT_LT(left, heard.GetFrames());
        const double lateMs =
            1000.0 * (static_cast<double>(left) - static_cast<double>(right)) / row.outputHz;
        EXPECT_NEAR(lateMs, row.isOn ? 0.45 : 0.0, row.isOn ? 0.25 : 0.0);

        const auto plain = MakeFile({row.outputHz, row.outputHz, 2}, Scatter());
        OfflineRig through(8, row.outputHz, row.option);
        through.Play(*plain);
        through.Step(100);
        const Rendering same = through.Heard();
        for (int i = 0; i < row.outputHz / 10; ++i) {
            ASSERT_EQ(same.At(static_cast<size_t>(i), i % 2), plain->GetStored(i, i % 2)) << i;
        }
    }
}

TEST(OpenALSound, TheRateOfAChannelIsTheSpeedOfItsSound)
{
    struct Row
    {
        unsigned long hz;
        double toneHz;
    };
    // A tone of 500 Hz, recorded at 22050.
    const Row rows[] = {
        {0, 500}, {22050, 500}, {44100, 1000}, {11025, 250}, {100000, 500 * 100000.0 / 22050}};
    for (const Row& row : rows) {
        OfflineRig rig;
        const auto file = MakeFile({40 * 22050, 22050}, Sine(500, 0.5, 22050));
        SndChannel* const channel = rig.Play(*file);
        ASSERT_TRUE(channel->SetFrequency(row.hz));
        EXPECT_EQ(channel->GetFrequency(), row.hz != 0 ? row.hz : 22050);
        rig.StepTimes(10, 100);
        const Rendering heard = rig.Heard();
        int rising = 0;
        for (size_t i = 1; i < heard.GetFrames(); ++i) {
            rising += heard.At(i - 1) < 0.0 && heard.At(i) >= 0.0;
        }
        EXPECT_NEAR(rising, row.toneHz, 1.0) << row.hz;
    }
}

TEST(OpenALSound, AChangeOfRateInTheMiddleLeavesNoGap)
{
    OfflineRig rig;
    const auto file = MakeFile({40 * 22050, 22050}, Constant(0.5));
    SndChannel* const channel = rig.Play(*file, ChanChgFrequency);
    for (const unsigned long hz : {100ul, 100000ul, 22050ul, 100ul, 44100ul, 8000ul, 100000ul}) {
        channel->SetFrequency(hz);
        rig.Step(100);
    }
    const Rendering heard = rig.Heard();
    for (size_t i = 0; i < heard.GetFrames(); ++i) {
        ASSERT_EQ(heard.At(i), 0.5) << i;
    }
}

TEST(OpenALSound, APositionalStereoSoundIsTheMeanOfItsSides)
{
    OfflineRig rig;
    const auto file =
        MakeFile({rateHz, rateHz, 2}, [](int, int channel) { return channel == 0 ? 0.75 : 0.25; });
    const auto same = MakeFile({rateHz, rateHz, 1}, Constant(0.5));
    SndChannel* const stereo = rig.Play(*file, ChanPositional);
    rig.Step(40);
    stereo->Stop();
    rig.StepTimes(2, 40);
    rig.Play(*same, ChanPositional);
    rig.Step(40);
    const Rendering heard = rig.Heard();
    EXPECT_NEAR(heard.At(1000), heard.At(3 * 1764 + 1000), 1e-9);
    EXPECT_NEAR(heard.At(1000), 0.5 * 0.5957, 0.001);
}

TEST(OpenALSound, TheSameCallsGiveTheSameFile)
{
    std::vector<double> heard[2];
    for (std::vector<double>& samples : heard) {
        OfflineRig rig;
        const auto music = MakeFile({5 * 22050, 22050, 2}, Scatter());
        const auto effect = MakeFile({11025, 11025, 1}, Scatter());
        rig.Play(*music);
        SndChannel* const channel = rig.Play(*effect, ChanPositional | ChanLooping);
        channel->SetFrequency(12345);
        for (int i = 0; i < 20; ++i) {
            rig.Step(static_cast<unsigned long>(40 + i), [&] {
                channel->SetPosition({static_cast<float>(i) - 10, 1, 2});
            });
        }
        samples = rig.Heard().samples;
    }
    EXPECT_EQ(heard[0], heard[1]);
}

TEST(OpenALDriver, SeveralDriversRunOneAfterAnotherAndSideBySide)
{
    for (int round = 0; round < 3; ++round) {
        OfflineRig one;
        OfflineRig other;
        const auto low = MakeFile({rateHz}, Constant(0.25));
        const auto high = MakeFile({rateHz}, Constant(0.75));
        one.Play(*low);
        other.Play(*high);
        one.Step(40);
        other.Step(40);
        EXPECT_EQ(one.Heard().At(1000), 0.25);
        EXPECT_EQ(other.Heard().At(1000), 0.75);
    }
}

TEST(OpenALDriver, TheHostsOwnContextStaysCurrentAlsoInsideEvents)
{
    ALCdevice* const device = reinterpret_cast<LPALCLOOPBACKOPENDEVICESOFT>(
        alcGetProcAddress(nullptr, "alcLoopbackOpenDeviceSOFT"))(nullptr);
    const ALCint attributes[] = {ALC_FORMAT_CHANNELS_SOFT, ALC_STEREO_SOFT, ALC_FORMAT_TYPE_SOFT,
        ALC_FLOAT_SOFT, ALC_FREQUENCY, rateHz, 0};
    ALCcontext* const context = alcCreateContext(device, attributes);
    ASSERT_TRUE(alcMakeContextCurrent(context));
    {
        OfflineRig rig;
        const auto file = MakeFile({100, rateHz}, Constant(0.5));
        SndChannel* const channel = rig.Play(*file, ChanPositional);
        channel->SetPosition({1, 2, 3});
        EXPECT_EQ(alcGetCurrentContext(), context);
        rig.onEvent = [&](const DriverEvent&) { EXPECT_EQ(alcGetCurrentContext(), context); };
        rig.Step(40);
        EXPECT_EQ(rig.TakeEvents().size(), 1u);
    }
    EXPECT_EQ(alcGetCurrentContext(), context);
    alcMakeContextCurrent(nullptr);
    alcDestroyContext(context);
    alcCloseDevice(device);
}

TEST(OpenALDriver, FormatsAndFilesThatCannotBeRenderedFailToOpen)
{
    DriverRig rig("HarmonetOpenAL");
    const std::string missing = (GetTestFolder() / "none" / "a.wav").string();
    rig.GetOptions().Set("OpenALRender", missing.c_str());
    EXPECT_FALSE(rig.Open(44100, 8));
    SoundFormat mono;
    mono.SetFormat(2, 44100, 0, 1);
    EXPECT_FALSE(DriverRig("HarmonetOpenAL").GetDriver().Open(nullptr, &mono, 500, false));
    DriverRig wrongRate("HarmonetOpenAL");
    wrongRate.GetOptions().Set("OpenALRender", (GetTestFolder() / "rate.wav").c_str());
    EXPECT_FALSE(wrongRate.Open(1, 8));
}

TEST(OpenALDriver, ChannelsBeyondTheLimitAreRefusedUntilOneIsFree)
{
    for (const int limit : {1, 24, 400}) {
        OfflineRig rig(limit);
        std::vector<std::unique_ptr<FormulaFile>> files;
        std::vector<SndChannel*> channels;
        for (int i = 0; i < limit; ++i) {
            files.push_back(MakeFile({rateHz}, Constant(0.0)));
            channels.push_back(rig.Play(*files.back(), i % 2 ? 0u : ChanPositional));
        }
        const auto extra = MakeFile({rateHz}, Constant(0.0));
        EXPECT_EQ(rig.Create(*extra), nullptr);
        rig.Step(40);
        for (SndChannel* const channel : channels) {
            channel->Stop();
        }
        for (int i = 0; i < limit; ++i) {
            EXPECT_NE(rig.Create(*extra), nullptr) << "the sounds that are falling silent do not count";
        }
    }
}

} // namespace
} // namespace Quon
