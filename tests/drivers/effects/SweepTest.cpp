#include "drivers/openal/effects/SweptEffect.h"
#include "tests/drivers/effects/Signals.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

namespace Quon::Testing
{
namespace
{

constexpr int rateHz = 22050;

/// The cubic through four points at 0, 1, 2 and 3 (Lagrange's form).
double Interpolate(const std::array<double, 4>& points, double place)
{
    double sum = 0;
    for (int i = 0; i < 4; ++i) {
        double term = points[static_cast<std::size_t>(i)];
        for (int other = 0; other < 4; ++other) {
            term *= other == i ? 1.0 : (place - other) / (i - other);
        }
        sum += term;
    }
    return sum;
}

/// One side of a sound through a sweep with this phase, computed directly.
template<class Record>
std::vector<double> SweepPlainly(const Record& record, const Pcm& dry, double turnsAhead)
{
    std::vector<double> line;
    const auto late = [&](int frames) {
        const auto back = static_cast<std::size_t>(frames);
        return back <= line.size() ? line[line.size() - back] : 0.0;
    };
    std::vector<double> out;
    for (const float sample : dry) {
        const double turns = record.frequency * static_cast<double>(out.size()) / rateHz + turnsAhead;
        const double sine = std::sin(2 * std::numbers::pi * turns);
        const double wave = record.waveform == 1 ? sine : 2 / std::numbers::pi * std::asin(sine);
        const double middle = record.delay * rateHz / 1000;
        const double delay = std::max(middle * (1 + record.depth / 100 * wave), 2.0);
        const int whole = static_cast<int>(delay);
        const double part = delay - whole;
        const double wet =
            Interpolate({late(whole - 1), late(whole), late(whole + 1), late(whole + 2)}, 1 + part);
        const double back = (1 - part) * late(whole) + part * late(whole + 1);
        line.push_back(sample + record.feedback / 100 * back);
        out.push_back(sample + record.wetDryMix / 100 * (wet - sample));
    }
    return out;
}

template<class SweptEffect, class Record>
void ExpectSweep(const Record& record)
{
    const Pcm noise = MakeNoise(20000, 0.5F);
    SweptEffect effect(record, {rateHz, 2});
    const Pcm out = Through(effect, MakeStereo(noise, noise));
    for (const int side : {0, 1}) {
        SCOPED_TRACE("delay " + std::to_string(record.delay) + ", side " + std::to_string(side));
        const Pcm heard = TakeSide(out, side);
        const std::vector<double> expected =
            SweepPlainly(record, noise, side == 1 ? (record.phase - 2) / 4.0 : 0.0);
        for (std::size_t i = 0; i < heard.size(); ++i) {
            ASSERT_NEAR(heard[i], expected[i], 0.02) << i;
        }
    }
}

TEST(Sweep, MatchesAPlainDelayLine)
{
    ExpectSweep<ChorusEffect>(FXChorus{100, 10, 0, 1.7F, 1, 16, 3});
    ExpectSweep<ChorusEffect>(FXChorus{70, 60, -50, 1.2F, 0, 8, 0});
    ExpectSweep<ChorusEffect>(FXChorus{50, 25, 30, 0.0F, 1, 20, 1});
    ExpectSweep<FlangerEffect>(FXFlanger{100, 100, 0, 1.25F, 1, 2, 2});
    ExpectSweep<FlangerEffect>(FXFlanger{25, 50, 60, 2.5F, 0, 4, 4});
}

// The sum of the geometric series of 0.99 is 100, and the cubic adds a quarter to a single sample at most.
TEST(Sweep, StaysBoundedWithTheMostFeedback)
{
    for (const float feedback : {99.0F, -99.0F}) {
        FlangerEffect flanger({100, 100, feedback, 10, 0, 4, 0}, {8000, 2});
        const Pcm noise = MakeNoise(100000, 1.0F);
        const Pcm out = Through(flanger, MakeStereo(noise, noise));
        EXPECT_LT(*std::max_element(out.begin(), out.end()), 125.0F);
        EXPECT_GT(*std::min_element(out.begin(), out.end()), -125.0F);
    }
}

} // namespace
} // namespace Quon::Testing
