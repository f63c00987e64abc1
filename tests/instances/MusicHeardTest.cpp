// A cross-fade as it is heard: rendered through the output driver and measured on the samples.

#include "tests/instances/HeardTest.h"

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

double Turn(double hz, std::size_t frame)
{
    return 2 * std::numbers::pi * hz * static_cast<double>(frame) / rateHz;
}

/// A stereo wave that holds a tone of one second and can be looped without a seam.
std::vector<unsigned char> BuildTone(double hz)
{
    return BuildWave({rateHz / windowFrames * windowFrames, rateHz, 2, 16}, [hz](int frame) {
        return std::lround(32767 * amplitude * std::sin(Turn(hz, static_cast<std::size_t>(frame))));
    });
}

/// How much of a tone is in a window.
double Measure(const Rendering& heard, std::size_t begin, double hz, int side)
{
    std::complex<double> sum;
    for (std::size_t i = begin; i < begin + windowFrames; ++i) {
        sum += heard.At(i, side) * std::polar(1.0, -Turn(hz, i));
    }
    return std::abs(sum) * 2.0 / windowFrames;
}

using MusicHeard = HeardTest;

TEST_F(MusicHeard, ACrossFadeHasNoGapNoClickAndLinearLevels)
{
    folder.Write("low", BuildTone(lowHz));
    folder.Write("high", BuildTone(highHz));
    const Rendering heard = Render([&](Scene& scene) {
        ASSERT_TRUE(scene.music.Play("low", true));
        StepTimes(20, 50);
        ASSERT_TRUE(scene.music.CrossFade("high", fadeMs, true));
        StepTimes(40, 50);
    });
    ASSERT_EQ(heard.GetFrames(), 3U * rateHz);

    // Not the first window, in which the piece sets in, nor the last, in which it is stopped.
    const std::size_t end = heard.GetFrames() - windowFrames;
    for (std::size_t at = windowFrames; at < end; at += windowFrames) {
        // In the second second.
        const double middle = static_cast<double>(at) + windowFrames / 2.0 - rateHz;
        const double risen = std::clamp(middle / (rateHz * fadeMs / 1000.0), 0.0, 1.0);
        for (int side = 0; side < 2; ++side) {
            ASSERT_NEAR(Measure(heard, at, lowHz, side), amplitude * (1.0 - risen), 0.002) << at;
            ASSERT_NEAR(Measure(heard, at, highHz, side), amplitude * risen, 0.002) << at;
        }
    }
    // Of a sine the largest bend is that of its peak; a click or a gap of a single sample has more.
    EXPECT_LT(heard.LargestBend(windowFrames, end), amplitude * Turn(highHz, 1) * Turn(highHz, 1) * 1.02);
}

} // namespace

} // namespace Quon
