#include "drivers/openal/effects/SweptEffect.h"
#include "tests/drivers/effects/Signals.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace Quon::Testing
{
namespace
{

constexpr int rateHz = 44100;
constexpr std::size_t windowFrames = 256;

/// The correlation of a window of `late` with `early` so many sample frames before.
double Correlate(const Pcm& early, const Pcm& late, std::size_t begin, std::size_t lag)
{
    double sum = 0;
    for (std::size_t i = begin; i < begin + windowFrames; ++i) {
        sum += double{late[i]} * early[i - lag];
    }
    return sum;
}

/// How late `late` is around a window, between samples by a parabola through the best three.
double FindDelay(const Pcm& early, const Pcm& late, std::size_t begin, std::size_t longest)
{
    std::size_t best = 1;
    for (std::size_t lag = 1; lag < longest; ++lag) {
        if (Correlate(early, late, begin, lag) > Correlate(early, late, begin, best)) {
            best = lag;
        }
    }
    const double before = Correlate(early, late, begin, best - 1);
    const double at = Correlate(early, late, begin, best);
    const double after = Correlate(early, late, begin, best + 1);
    return static_cast<double>(best) + (before - after) / (2 * (before - 2 * at + after));
}

double GetWave(int waveform, double turns)
{
    const double sine = std::sin(2 * std::numbers::pi * turns);
    return waveform == 1 ? sine : 2 / std::numbers::pi * std::asin(sine);
}

/// Noise through the delayed path alone, and where it comes out, against the formula of the sweep. The right
/// side's sweep is ahead.
template<class SweptEffect, class Record>
void ExpectSweep(const Record& record, double rightTurns)
{
    const Pcm noise = MakeNoise(3 * rateHz, 0.5f);
    SweptEffect effect(record, {rateHz, 2});
    const Pcm out = Through(effect, MakeStereo(noise, noise));
    const double middle = record.delay * rateHz / 1000;
    const auto longest = static_cast<std::size_t>(middle * (1 + record.depth / 100)) + 10;
    for (const int side : {0, 1}) {
        const Pcm late = TakeSide(out, side);
        for (std::size_t begin = 4000; begin + windowFrames < late.size(); begin += 3777) {
            const double seconds = (static_cast<double>(begin) + windowFrames / 2.0) / rateHz;
            const double turns = record.frequency * seconds + (side == 1 ? rightTurns : 0);
            const double swing = record.depth / 100 * GetWave(record.waveform, turns);
            EXPECT_NEAR(FindDelay(noise, late, begin, longest), std::max(middle * (1 + swing), 2.0), 0.6)
                << "delay " << record.delay << ", side " << side << ", at " << seconds << " s";
        }
    }
}

TEST(Chorus, SweepsTheDelayAlongItsWave)
{
    ExpectSweep<ChorusEffect>(FXChorus{100, 10, 0, 0.7f, 1, 16, 3}, 0.25);
    ExpectSweep<ChorusEffect>(FXChorus{100, 60, 0, 0.2f, 0, 8, 0}, -0.5);
    ExpectSweep<ChorusEffect>(FXChorus{100, 25, 0, 0.0f, 1, 20, 1}, -0.25);
}

TEST(Flanger, SweepsTheDelayAlongItsWave)
{
    ExpectSweep<FlangerEffect>(FXFlanger{100, 100, 0, 0.25f, 1, 2, 2}, 0.0);
    ExpectSweep<FlangerEffect>(FXFlanger{100, 50, 0, 0.5f, 0, 4, 4}, 0.5);
}

// A delay that stands still makes echoes of whole sample frames: 2 ms are 16 of them.
TEST(Chorus, FeedsBackWhatIsLate)
{
    for (const float feedback : {50.0f, -50.0f}) {
        ChorusEffect chorus({25, 0, feedback, 1.1f, 1, 2, 3}, {8000, 1});
        const Pcm out = Through(chorus, MakeImpulse(100));
        for (std::size_t i = 0; i < out.size(); ++i) {
            const double echo = 0.25 * std::pow(feedback / 100, static_cast<double>(i) / 16 - 1);
            const double expected = i == 0 ? 0.75 : i % 16 == 0 ? echo : 0.0;
            EXPECT_NEAR(out[i], expected, 1e-6) << "feedback " << feedback << ", sample frame " << i;
        }
    }
}

// The sum of the geometric series of 0.99 is 100, and the cubic adds a quarter to a single sample at most.
TEST(Flanger, StaysBoundedWhileItSweepsWithTheMostFeedback)
{
    for (const float feedback : {99.0f, -99.0f}) {
        FlangerEffect flanger({100, 100, feedback, 10, 0, 4, 0}, {8000, 2});
        const Pcm noise = MakeNoise(100000, 1.0f);
        const Pcm out = Through(flanger, MakeStereo(noise, noise));
        EXPECT_LT(*std::max_element(out.begin(), out.end()), 125.0f);
        EXPECT_GT(*std::min_element(out.begin(), out.end()), -125.0f);
    }
}

} // namespace
} // namespace Quon::Testing
