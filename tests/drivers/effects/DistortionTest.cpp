#include "drivers/openal/effects/DistortionEffect.h"
#include "tests/drivers/effects/Signals.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <string>

namespace Quon::Testing
{
namespace
{

constexpr int rateHz = 44100;
constexpr double pi = std::numbers::pi;

// The analogue filters that the digital ones stand for, at the frequency that the bilinear transform puts in
// the place of `frequencyHz`.
double GetLowPassGain(double frequencyHz, double cutoffHz)
{
    const double w = std::tan(pi * frequencyHz / rateHz) / std::tan(pi * cutoffHz / rateHz);
    return 1 / std::sqrt(1 + std::pow(w, 4));
}

double GetBandPassGain(double frequencyHz, double centerHz, double bandwidthHz)
{
    const double w = std::tan(pi * frequencyHz / rateHz) / std::tan(pi * centerHz / rateHz);
    return 1 / std::hypot(1, centerHz / bandwidthHz * (w - 1 / w));
}

/// The amplitude of a harmonic of a bent sine, by integrating over a period.
double GetHarmonic(double amplitude, double bend, int harmonic)
{
    constexpr int steps = 20000;
    double sum = 0;
    for (int i = 0; i < steps; ++i) {
        const double angle = 2 * pi * (i + 0.5) / steps;
        const double x = amplitude * std::sin(angle);
        sum += (1 + bend) * x / (1 + bend * std::fabs(x)) * std::sin(harmonic * angle);
    }
    return 2 * std::fabs(sum) / steps;
}

TEST(Distortion, HasTheHarmonicsOfItsCurveBehindItsFilters)
{
    // So that no harmonic that is folded down falls on another one.
    constexpr int sineHz = 301;
    const FXDistortion records[] = {
        {-18.0f, 15.0f, 2400.0f, 2400.0f, 7350.0f},
        {0.0f, 0.0f, 300.0f, 8000.0f, 8000.0f},
        {-6.0f, 60.0f, 1000.0f, 4000.0f, 400.0f},
        {-40.0f, 85.0f, 5000.0f, 1000.0f, 8000.0f},
    };
    for (const FXDistortion& record : records) {
        constexpr float amplitude = 0.5f;
        DistortionEffect distortion(record, {rateHz, 1});
        const Pcm sine = MakeSine(sineHz, amplitude, rateHz, rateHz);
        Through(distortion, sine);
        const Pcm out = Through(distortion, sine);
        const double edge = 0.99 * record.edge / 100;
        const double low = amplitude * GetLowPassGain(sineHz, record.preLowpassCutoff);
        for (int harmonic = 1; harmonic <= 9; ++harmonic) {
            SCOPED_TRACE("edge " + std::to_string(record.edge) + ", harmonic " + std::to_string(harmonic));
            const double bent = harmonic % 2 == 1 ? GetHarmonic(low, 2 * edge / (1 - edge), harmonic) : 0.0;
            const double expected = bent * std::pow(10, record.gain / 20) *
                GetBandPassGain(harmonic * sineHz, record.postEQCenterFrequency, record.postEQBandwidth);
            EXPECT_NEAR(GetAmplitude(out, harmonic * sineHz, rateHz), expected, 0.002 * expected + 1e-5);
        }
    }
}

} // namespace
} // namespace Quon::Testing
