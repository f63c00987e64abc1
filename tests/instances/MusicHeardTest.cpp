// A cross-fade as it is heard: rendered through the output driver and measured on the samples.

#include "harmonet/instances/Music.h"
#include "tests/drivers/OfflineRig.h"
#include "tests/support/HostTest.h"

#include <cmath>
#include <complex>
#include <numbers>

namespace Quon
{

namespace
{

constexpr int rateHz = 22050;
constexpr double amplitude = 0.4;
// Whole periods of both tones fit into a window.
constexpr int windowFrames = 100;
constexpr double lowHz = 441.0;
constexpr double highHz = 1102.5;
constexpr int fadeMs = 1000;
constexpr double fadeFrames = rateHz * fadeMs / 1000.0;

/// A stereo wave that holds a tone of one second and can be looped without a seam.
std::vector<unsigned char> BuildTone(double hz)
{
    std::vector<unsigned char> wave = BuildWave({rateHz / windowFrames * windowFrames, rateHz, 2, 16});
    constexpr std::size_t headBytes = 44;
    for (std::size_t at = headBytes; at + 4 <= wave.size(); at += 4) {
        const double frame = static_cast<double>((at - headBytes) / 4);
        const auto sample = static_cast<int>(
            std::lround(32767 * amplitude * std::sin(2 * std::numbers::pi * hz * frame / rateHz)));
        for (const std::size_t side : {at, at + 2}) {
            wave[side] = static_cast<unsigned char>(sample & 0xFF);
            wave[side + 1] = static_cast<unsigned char>(sample >> 8 & 0xFF);
        }
    }
    return wave;
}

/// What a window holds of a tone: length and phase of its pointer.
std::complex<double> Measure(const Rendering& heard, std::size_t begin, double hz, int side)
{
    std::complex<double> sum;
    for (std::size_t i = begin; i < begin + windowFrames; ++i)
        sum +=
            heard.At(i, side) * std::polar(1.0, -2 * std::numbers::pi * hz * static_cast<double>(i) / rateHz);
    return sum * (2.0 / windowFrames);
}

/// The largest difference between the window and the two tones that were found in it.
double CalcRest(const Rendering& heard, std::size_t begin, int side)
{
    const std::complex<double> low = Measure(heard, begin, lowHz, side);
    const std::complex<double> high = Measure(heard, begin, highHz, side);
    double largest = 0.0;
    for (std::size_t i = begin; i < begin + windowFrames; ++i) {
        const double turn = 2 * std::numbers::pi * static_cast<double>(i) / rateHz;
        const double tones =
            (low * std::polar(1.0, turn * lowHz)).real() + (high * std::polar(1.0, turn * highHz)).real();
        largest = std::max(largest, std::abs(heard.At(i, side) - tones));
    }
    return largest;
}

/// A sound system that renders into a file.
class MusicHeard : public HostTest
{
protected:
    MusicHeard()
    {
        folder.Write("low", BuildTone(lowHz));
        folder.Write("high", BuildTone(highHz));
        path = (GetTestFolder() / "music.wav").string();
        SetOption("Sound", "HarmonetOpenAL");
        SetOption("OpenALRender", path.c_str());
        EXPECT_TRUE(Start());
    }

    std::string path;
};

TEST_F(MusicHeard, ACrossFadeHasNoGapAndNoClickAndTheLevelsOfTwoLinearFades)
{
    {
        Music music;
        ASSERT_TRUE(music.Play("low", true));
        StepTimes(20, 50);
        ASSERT_TRUE(music.CrossFade("high", fadeMs, true));
        StepTimes(40, 50);
    }
    system.Done();
    const Rendering heard = ReadRendering(path);
    ASSERT_EQ(heard.GetFrames(), 3U * rateHz);

    constexpr double begin = rateHz; // The second in which the cross-fade begins.
    constexpr double tolerance = amplitude * 0.005;
    double rest = 0.0;
    // Not the first window, in which the piece sets in, nor the last, in which it is stopped.
    for (std::size_t at = windowFrames; at + 2 * windowFrames <= heard.GetFrames(); at += windowFrames) {
        const double middle = static_cast<double>(at) + windowFrames / 2.0;
        const double risen = std::clamp((middle - begin) / fadeFrames, 0.0, 1.0);
        for (int side = 0; side < 2; ++side) {
            const double low = std::abs(Measure(heard, at, lowHz, side));
            const double high = std::abs(Measure(heard, at, highHz, side));
            rest = std::max(rest, CalcRest(heard, at, side));
            ASSERT_NEAR(low, amplitude * (1.0 - risen), tolerance) << "old piece at frame " << at;
            ASSERT_NEAR(high, amplitude * risen, tolerance) << "new piece at frame " << at;
        }
    }
    // A click or a gap of a single sample would be left over beside the two tones.
    EXPECT_LT(rest, amplitude * 0.005);
    // Nor is there a step that the steeper of the tones does not make by itself.
    const double steepest = amplitude * 2 * std::numbers::pi * highHz / rateHz;
    EXPECT_LT(heard.LargestStep(windowFrames, heard.GetFrames() - windowFrames), steepest * 1.02);
}

} // namespace

} // namespace Quon
