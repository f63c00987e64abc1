#include "tests/drivers/EveryDriver.h"
#include "tests/drivers/OfflineRig.h"

#include <cmath>
#include <limits>
#include <numbers>

namespace Quon
{
namespace
{

constexpr int rateHz = OfflineRig::rateHz;
constexpr float noNumber = std::numeric_limits<float>::quiet_NaN();
constexpr float infinite = std::numeric_limits<float>::infinity();

std::unique_ptr<DriverRig> MakeOffline(int maxChannels)
{
    return std::make_unique<OfflineRig>(maxChannels);
}

INSTANTIATE_TEST_SUITE_P(
    , EveryDriver, testing::Values(MakeOffline), [](const auto&) { return std::string("OpenAL"); });

TEST(OpenALSound, GainAndMainGainMultiplyAndIgnoreNaN)
{
    OfflineRig rig;
    SndDriver& driver = rig.GetDriver();
    const auto file = MakeFile({rateHz}, Constant(0.5));
    SndChannel* const channel = rig.Play(*file);
    struct Row
    {
        float gain, mainGain;
        double heard;
    };
    const Row rows[] = {{0.5F, 1.0F, 0.25}, {0.25F, 1.0F, 0.125}, {0.25F, 0.5F, 0.0625},
        {noNumber, noNumber, 0.0625}, {7.0F, 0.5F, 0.25}, {7.0F, 7.0F, 0.5}, {-1.0F, 1.0F, 0.0}};
    for (const Row& row : rows) {
        channel->SetGain(row.gain);
        driver.SetMainGain(row.mainGain);
        rig.Step(40);
        EXPECT_EQ(rig.Heard().samples.back(), row.heard) << "row " << &row - rows;
    }
    EXPECT_EQ(driver.GetMainGain(), 1.0F);
    channel->FadeIn(1000);
    channel->Stop();
    ASSERT_EQ(rig.Play(*file), channel);
    rig.Step(40);
    EXPECT_EQ(rig.Heard().samples.back(), 0.5) << "the next sound has nothing of the last";
}

/// Plays a steady signal from places around the listener and measures what arrives. The sound has two
/// channels, of which a place makes one.
class Placed : public testing::Test
{
protected:
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
        // Straight ahead a mono source of OpenAL comes out at 0.596 on each side.
        constexpr double fullGain = 0.5 * 0.5957 * std::numbers::sqrt2;
        return std::hypot(heard.Level(end - 441, end, 0), heard.Level(end - 441, end, 1)) / fullGain;
    }

    OfflineRig rig;
    SndDriver& driver = rig.GetDriver();
    std::unique_ptr<FormulaFile> file =
        MakeFile({40 * rateHz, rateHz, 2}, [](int, int side) { return side == 0 ? 0.75 : 0.25; });
    SndChannel* channel = rig.Create(*file, ChanPositional);
};

TEST_F(Placed, GainFollowsTheInverseDistanceLaw)
{
    struct Row
    {
        float minDistance, maxDistance, rolloff, distance;
        double gain;
    };
    const Row rows[] = {{2, 50, 1, 1, 1.0}, {2, 50, 1, 2, 1.0}, {2, 50, 1, 4, 0.5}, {2, 50, 1, 50, 0.04},
        {2, 50, 1, 500, 0.04}, {2, 50, 2, 4, 2.0 / (2 + 2 * 2)}, {2, 50, 0.5F, 10, 2.0 / (2 + 0.5 * 8)},
        {2, 50, 0, 40, 1.0}, {10, 100, 1, 20, 0.5},
        // None set: the 10 and 500 of a definition that sets none.
        {0, 0, 1, 30, 10.0 / 30},
        // Distances without a range: no attenuation.
        {10, 5, 1, 30, 1.0}, {-4, infinite, 1, 30, 1.0}};
    Play();
    for (const Row& row : rows) {
        driver.SetRolloffFactor(row.rolloff);
        channel->SetMinMaxDistance(row.minDistance, row.maxDistance, false);
        channel->SetPosition({0, 0, -row.distance});
        EXPECT_NEAR(Gain(), row.gain, 0.002) << "row " << &row - rows;
    }
}

TEST_F(Placed, CutoutSilencesASoundBeyondItsMaximum)
{
    channel->SetMinMaxDistance(100, 20, true);
    channel->SetPosition({0, 0, -19});
    Play();
    EXPECT_NEAR(Gain(), 1.0, 0.002);
    channel->SetPosition({0, 0, -21});
    EXPECT_EQ(Gain(), 0.0);
    driver.SetListenerPosition({0, 0, -5});
    EXPECT_NEAR(Gain(), 1.0, 0.002);
    driver.SetListenerPosition({0, 0, 5});
    EXPECT_EQ(Gain(), 0.0);
    channel->SetMinMaxDistance(100, 20, false);
    EXPECT_NEAR(Gain(), 1.0, 0.002);
    channel->SetMinMaxDistance(100, 20, true);
    channel->SetGain(0.5F);
    EXPECT_EQ(Gain(), 0.0);
    channel->SetMinMaxDistance(100, 30, true);
    EXPECT_NEAR(Gain(), 0.5, 0.002);
}

TEST_F(Placed, ConeGainIsLinearFromInnerToOuterAngle)
{
    channel->SetCone(60.0F, 120.0F, 0.2F);
    channel->SetMinMaxDistance(1.0F, 50.0F, true);
    channel->SetPosition({0, 0, -1});
    Play();
    // By the angle between the cone's axis and the way to the listener; the cone's angles are whole openings.
    const std::pair<double, double> rows[] = {{29, 1.0}, {45, 0.6}, {52.5, 0.4}, {61, 0.2}, {180, 0.2}};
    // With the listener anywhere.
    for (const Vector3& listener : {Vector3{0, 0, 0}, Vector3{40, -80, 60}}) {
        driver.SetListenerPosition(listener);
        channel->SetPosition(listener + Vector3{0, 0, -1});
        for (const auto& [degrees, gain] : rows) {
            const double radians = degrees * std::numbers::pi / 180;
            channel->SetDirection(
                {static_cast<float>(std::sin(radians)), 0, static_cast<float>(std::cos(radians))});
            EXPECT_NEAR(Gain(), gain, 0.002) << degrees;
        }
    }
    // Clamped to 360 degrees and a gain of 1.
    channel->SetCone(400.0F, 90.0F, 2.0F);
    EXPECT_NEAR(Gain(), 1.0, 0.002);
    // None set: no cone.
    channel->SetCone(0.0F, 0.0F, 0.0F);
    EXPECT_NEAR(Gain(), 1.0, 0.002);
}

TEST_F(Placed, ASoundIsLouderOnItsSide)
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
        driver.SetListenerPosition(row.listener);
        driver.SetListenerOrientation(row.front, row.top);
        rig.StepTimes(2, 40);
        const Rendering heard = rig.Heard();
        const size_t last = heard.GetFrames() - 1;
        EXPECT_GT(heard.At(last, row.louder), 3 * heard.At(last, 1 - row.louder)) << "row " << &row - rows;
    }
}

TEST_F(Placed, NaNAndHugeValuesAreIgnored)
{
    channel->SetMinMaxDistance(2, 50, false);
    Play();
    for (const Vector3& vector : {Vector3{noNumber, 0, 0}, {0, noNumber, 0}, {0, 0, noNumber}}) {
        channel->SetPosition(vector);
        channel->SetDirection(vector);
        driver.SetListenerPosition(vector);
        driver.SetListenerOrientation(vector, {0, 1, 0});
        driver.SetListenerOrientation({0, 0, -1}, vector);
    }
    channel->SetMinMaxDistance(noNumber, 50, false);
    channel->SetCone(noNumber, 50, 0);
    driver.SetRolloffFactor(noNumber);
    channel->SetPosition({infinite, -infinite, 3e38F});
    driver.SetListenerPosition({-infinite, infinite, 3e38F});
    rig.Step(40);
    channel->SetPosition({0, 0, -4});
    driver.SetListenerPosition({0, 0, 0});
    EXPECT_NEAR(Gain(), 0.5, 0.002);
}

// With a head between the ears, a sound from the right reaches the left one some 0.6 ms later. Only newer
// versions of OpenAL Soft have a head at any rate.
TEST(OpenALSound, HrtfDelaysTheFarEarOfPositionalSounds)
{
    struct Row
    {
        const char* option;
        int outputHz;
        bool isOn;
    };
    const Row rows[] = {{nullptr, 44100, false}, {"-1", 44100, false}, {"0", 44100, false},
        {"1", 44100, true}, {"1", 48000, true}};
    for (const Row& row : rows) {
        SCOPED_TRACE(
            std::string(row.option ? row.option : "not set") + " at " + std::to_string(row.outputHz));
        OfflineRig rig(8, row.outputHz, row.option);
        FormulaFile& click =
            rig.Make({row.outputHz, row.outputHz}, [](int i, int) { return i < 4 ? 0.9 : 0.0; });
        rig.Play(click, ChanPositional)->SetPosition({1, 0, -1});
        rig.Step(100);
        const Rendering heard = rig.Heard();
        const size_t left = heard.FindFirst(0.02, 0);
        ASSERT_LT(left, heard.GetFrames());
        const auto lateFrames = static_cast<double>(left) - static_cast<double>(heard.FindFirst(0.02, 1));
        EXPECT_NEAR(1000.0 * lateFrames / row.outputHz, row.isOn ? 0.45 : 0.0, row.isOn ? 0.25 : 0.0);
    }
}

TEST(OpenALSound, AChangeOfRateLeavesNoGap)
{
    OfflineRig rig;
    const auto file = MakeFile({40 * 22050, 22050}, Constant(0.5));
    SndChannel* const channel = rig.Play(*file, ChanChgFrequency);
    for (const unsigned long hz : {22050UL, 100UL, 100000UL, 22050UL, 100UL, 44100UL, 8000UL, 100000UL}) {
        channel->SetFrequency(hz);
        rig.Step(100);
    }
    const Rendering heard = rig.Heard();
    // After the edge at its begin, which filters round off.
    for (size_t i = rateHz / 20; i < heard.GetFrames(); ++i) {
        ASSERT_NEAR(heard.At(i), 0.5, 0.001) << i;
    }
}

// Each sample encodes its position in the file.
TEST(OpenALSound, PitchGlidesWithoutAClickAndTheFileIsPutBackToWhatWasHeard)
{
    constexpr int frames = 20 * rateHz;
    constexpr int steps = 200;
    constexpr unsigned long stepMs = 50;
    for (const char* grade : {"0", "1", "2"}) {
        OfflineRig rig(8, rateHz, nullptr, {{"OpenALResampling", grade}});
        const auto file = MakeFile({frames, rateHz, 1, 4}, [](int i, int) { return i / (1.0 * frames); });
        SndChannel* const channel = rig.Play(*file);
        double played = 0.0;
        double before = 1.0;
        double pitch = 1.0;
        for (int step = 0; step <= steps; ++step) {
            // 7 is clamped to 2, and NaN ignored. What is set in a step is heard in the next, as a
            // glide unless the grade is "fast".
            const double next = step % 8 == 3 ? 2.0 : step < steps ? 1.0 + 0.5 * std::sin(step / 5.0) : 1.0;
            played += 0.001 * stepMs * rateHz * (grade[0] == '0' ? pitch : (before + pitch) / 2);
            before = std::exchange(pitch, next);
            rig.Step(stepMs, [&] {
                channel->SetPitch(next == 2.0 ? 7.0F : static_cast<float>(next));
                channel->SetPitch(noNumber);
            });
        }
        EXPECT_EQ(channel->GetFrequency(), rateHz);
        const Rendering heard = rig.Heard();
        channel->Stop();
        EXPECT_NEAR(heard.samples.back() * frames, played, 150) << "grade " << grade;
        EXPECT_NEAR(file->GetCurrentSample(), heard.samples.back() * frames, 150) << "grade " << grade;
        EXPECT_LE(heard.LargestBend(rateHz / 10, heard.GetFrames()), 3.0 / 32768) << "grade " << grade;
    }
}

TEST(OpenALSound, ALowPassLeavesLowTonesAndGivesHighOnesItsGain)
{
    const auto warp = [](double hz) { return std::tan(std::numbers::pi * hz / rateHz); };
    for (const char* grade : {"0", "1"}) {
        for (const double toneHz : {100.0, 1000.0, 5000.0, 10000.0}) {
            for (const double gain : {0.7, 0.1, 0.0}) {
                OfflineRig rig(8, rateHz, nullptr, {{"OpenALResampling", grade}});
                const auto file = MakeFile({rateHz}, Sine(toneHz, 0.5, rateHz));
                SndChannel* const channel = rig.Play(*file, toneHz > 2000 ? ChanPositional : 0U);
                rig.StepTimes(2, 100);
                channel->SetLowPass(static_cast<float>(gain));
                rig.StepTimes(2, 100);
                const Rendering heard = rig.Heard();
                const double w4 = std::pow(warp(toneHz) / warp(1000.0), 4);
                EXPECT_NEAR(heard.Level(3 * rateHz / 10, 4 * rateHz / 10, 0) /
                        heard.Level(rateHz / 10, 2 * rateHz / 10, 0),
                    std::sqrt((1 + gain * gain * w4) / (1 + w4)), 0.002)
                    << toneHz << " Hz, gain " << gain << ", grade " << grade;
            }
        }
    }
}

TEST(OpenALSound, ALowPassThatMovesDoesNotClick)
{
    for (const double toneHz : {100.0, 440.0, 3000.0}) {
        OfflineRig rig;
        const auto file = MakeFile({rateHz}, Sine(toneHz, 0.5, rateHz));
        SndChannel* const channel = rig.Play(*file);
        for (const float gain : {1.0F, 0.0F, 1.0F, noNumber, 0.3F, -7.0F, 0.7F, 7.0F}) {
            channel->SetLowPass(gain);
            rig.Step(40);
        }
        const double bend = 4 * std::pow(std::sin(std::numbers::pi * toneHz / rateHz), 2) * 0.5;
        constexpr double rounding = 4.0 / 32768;
        const Rendering heard = rig.Heard();
        EXPECT_LE(heard.LargestBend(2, heard.GetFrames()), 1.05 * bend + rounding) << toneHz;
    }
}

TEST(OpenALDriver, FormatsAndFilesThatCannotBeRenderedFailToOpen)
{
    DriverRig rig("HarmonetOpenAL");
    const auto opens = [&](const std::string& path, int outputHz) {
        rig.GetOptions().Set("OpenALRender", path.c_str());
        return rig.Open(outputHz, 8);
    };
    EXPECT_FALSE(opens(GetTestFolder().string(), 44100));
    EXPECT_FALSE(opens((GetTestFolder() / "none" / "a.wav").string(), 44100));
    EXPECT_FALSE(opens((GetTestFolder() / "rate.wav").string(), 1));
    if (std::filesystem::exists("/dev/full")) {
        EXPECT_FALSE(opens("/dev/full", 44100));
    }
    SoundFormat mono;
    mono.SetFormat(2, 44100, 0, 1);
    EXPECT_FALSE(rig.GetDriver().Open(nullptr, &mono, 500, false));
}

} // namespace
} // namespace Quon
