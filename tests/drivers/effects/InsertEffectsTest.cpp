// The effects that take a sound by its samples' level or by fixed delays, against what their formulas give.

#include "drivers/openal/effects/CompressorEffect.h"
#include "drivers/openal/effects/DistortionEffect.h"
#include "drivers/openal/effects/EchoEffect.h"
#include "drivers/openal/effects/GargleEffect.h"
#include "drivers/openal/effects/ParamEqEffect.h"
#include "tests/drivers/effects/Signals.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>

namespace Quon::Testing
{
namespace
{

constexpr int rateHz = 44100;
constexpr double pi = std::numbers::pi;

/// A tone of one level: every sample is the amplitude or its opposite.
Pcm MakeSquare(double amplitude, std::size_t sampleFrames)
{
    Pcm pcm(sampleFrames);
    for (std::size_t i = 0; i < sampleFrames; ++i) {
        pcm[i] = static_cast<float>(i / 20 % 2 == 0 ? amplitude : -amplitude);
    }
    return pcm;
}

TEST(Compressor, FollowsTheStaticCurve)
{
    struct Row
    {
        float gain, threshold, ratio;
    };
    const Row rows[] = {{0, -20, 3}, {6, -40, 1}, {-12, -30, 100}, {60, -60, 2}, {0, 0, 5}};
    for (const auto& [gain, threshold, ratio] : rows) {
        for (int level = -70; level <= 12; level += 5) {
            SCOPED_TRACE("threshold " + std::to_string(threshold) + ", level " + std::to_string(level));
            CompressorEffect compressor({gain, 0.01f, 50.0f, threshold, ratio, 0.0f}, {rateHz, 1});
            const Pcm out = Through(compressor, MakeSquare(std::pow(10, level / 20.0), rateHz / 10));
            const double above = std::max(level - double{threshold}, 0.0);
            EXPECT_NEAR(ToDecibels(std::fabs(out.back())), level - above + above / ratio + gain, 0.01);
        }
    }
}

// The level is that of an RC circuit: it goes exponentially from where it is to where it is drawn.
TEST(Compressor, TakesItsTimeConstantsToRiseAndToFall)
{
    struct Row
    {
        double from, to, timeConstantMs;
    };
    constexpr double threshold = 0.01;
    constexpr double ratio = 4;
    CompressorEffect compressor({0, 20, 120, -40.0f, ratio, 0.0f}, {rateHz, 1});
    for (const auto& [from, to, timeConstantMs] : {Row{0, 0.8, 20}, Row{0.8, 0.02, 120}}) {
        const Pcm out = Through(compressor, MakeSquare(to, rateHz));
        for (std::size_t i = 0; i < out.size(); i += 50) {
            const double ms = static_cast<double>(i + 1) * 1000 / rateHz;
            const double level = to + (from - to) * std::exp(-ms / timeConstantMs);
            const double gain = std::pow(std::max(level / threshold, 1.0), 1 / ratio - 1);
            EXPECT_NEAR(std::fabs(out[i]) / to, gain, 1e-3) << ms << " ms";
        }
    }
}

TEST(Compressor, LetsASoundThroughForThePredelay)
{
    CompressorEffect prompt({0, 1.0f, 50.0f, -40.0f, 10.0f, 0.0f}, {rateHz, 1});
    CompressorEffect late({0, 1.0f, 50.0f, -40.0f, 10.0f, 4.0f}, {rateHz, 1});
    constexpr std::size_t predelay = 176; // 4 ms
    const Pcm tone(800, 0.5f);
    const Pcm atOnce = Through(prompt, tone);
    const Pcm later = Through(late, tone);
    for (std::size_t i = 0; i < tone.size(); ++i) {
        EXPECT_FLOAT_EQ(later[i], i < predelay ? 0.5f : atOnce[i - predelay]) << i;
    }
}

TEST(Compressor, LowersBothSidesByTheLouderOne)
{
    const FXCompressor record = {0, 5.0f, 50.0f, -40.0f, 10.0f, 1.0f};
    CompressorEffect stereo(record, {rateHz, 2});
    CompressorEffect mono(record, {rateHz, 1});
    const Pcm loud = MakeSquare(0.5, rateHz / 10);
    const Pcm out = Through(stereo, MakeStereo(MakeSquare(0.05, rateHz / 10), loud));
    EXPECT_EQ(TakeSide(out, 1), Through(mono, loud));
    EXPECT_NEAR(out[out.size() - 2] / out.back(), 0.1, 1e-5);
}

// The analogue filters that the digital ones stand for, at the frequency that the bilinear transform puts in
// the place of `hz`.
double GetLowPassGain(double hz, double cutoffHz)
{
    const double w = std::tan(pi * hz / rateHz) / std::tan(pi * cutoffHz / rateHz);
    return 1 / std::sqrt(1 + std::pow(w, 4));
}

double GetBandPassGain(double hz, double centerHz, double bandwidthHz)
{
    const double w = std::tan(pi * hz / rateHz) / std::tan(pi * centerHz / rateHz);
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
    constexpr float amplitude = 0.5f;
    const FXDistortion records[] = {{-18.0f, 15.0f, 2400.0f, 2400.0f, 7350.0f},
        {0.0f, 0.0f, 300.0f, 8000.0f, 8000.0f}, {-6.0f, 60.0f, 1000.0f, 4000.0f, 400.0f},
        {-40.0f, 85.0f, 5000.0f, 1000.0f, 8000.0f}};
    for (const FXDistortion& record : records) {
        DistortionEffect distortion(record, {rateHz, 1});
        const Pcm sine = MakeSine(sineHz, amplitude, rateHz, rateHz);
        Through(distortion, sine);
        const Pcm out = Through(distortion, sine);
        const double edge = 0.99 * record.edge / 100;
        const double low = amplitude * GetLowPassGain(sineHz, record.preLowpassCutoff);
        for (int harmonic = 1; harmonic <= 9; ++harmonic) {
            const double bent = harmonic % 2 == 1 ? GetHarmonic(low, 2 * edge / (1 - edge), harmonic) : 0.0;
            const double expected = bent * std::pow(10, record.gain / 20) *
                GetBandPassGain(harmonic * sineHz, record.postEQCenterFrequency, record.postEQBandwidth);
            EXPECT_NEAR(GetAmplitude(out, harmonic * sineHz, rateHz), expected, 0.002 * expected + 1e-5)
                << "edge " << record.edge << ", harmonic " << harmonic;
        }
    }
}

// An impulse on the left side or on the only one. 30 ms are 240 sample frames.
TEST(Echo, RepeatsWithTheFeedbackAndSharesTheLevelByTheMixAndChangesSidesWhenPanned)
{
    using Taps = std::map<std::size_t, float>; ///< By sample frames; those of both sides interleaved.
    struct Row
    {
        FXEcho record;
        int channels;
        Taps taps;
    };
    const Row rows[] = {
        {{40, 50, 30, 500, 0}, 1, {{0, 0.6f}, {240, 0.4f}, {480, 0.2f}, {720, 0.1f}, {960, 0.05f}}},
        {{100, 50, 30, 50, 0}, 2,
            {{480, 1.0f}, {960, 0.5f}, {1440, 0.25f}, {1920, 0.125f}, {801, 1.0f}, {1601, 0.5f}}},
        {{100, 50, 30, 50, 1}, 2, {{480, 1.0f}, {801, 1.0f}, {1281, 0.5f}, {1280, 0.5f}, {1760, 0.25f}}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE("row " + std::to_string(&row - rows));
        EchoEffect echo(row.record, {8000, row.channels});
        const Pcm mono = MakeImpulse(1000);
        const Pcm out = Through(echo, row.channels == 1 ? mono : MakeStereo(mono, mono));
        for (std::size_t i = 0; i < out.size(); ++i) {
            const auto tap = row.taps.find(i);
            EXPECT_NEAR(out[i], tap != row.taps.end() ? tap->second : 0.0f, 1e-6f) << i;
        }
    }
}

TEST(Gargle, BeginsAtSilenceAsATriangleAndAtFullLevelAsASquareAndGoesOn)
{
    constexpr int gargleHz = 50;
    constexpr std::size_t period = 20000 / gargleHz;
    const Pcm one(20 * period, 1.0f);
    GargleEffect triangle({gargleHz, 0}, {20000, 1});
    GargleEffect square({gargleHz, 1}, {20000, 1});
    const Pcm risen = Through(triangle, one);
    const Pcm switched = Through(square, one);
    for (std::size_t i = 0; i < one.size(); ++i) {
        const double turn = static_cast<double>(i % period) / static_cast<double>(period);
        EXPECT_NEAR(risen[i], turn < 0.5 ? 2 * turn : 2 - 2 * turn, 1e-4) << i;
        EXPECT_EQ(switched[i], turn < 0.5 ? 1.0f : 0.0f) << i;
    }
}

// The definition of a band: all of the gain at its centre, half of its decibels at the edges, which lie half
// of the bandwidth below and above, and none far away.
TEST(ParamEq, HasItsGainAtTheCentreHalfAtTheEdgesAndNoneFarAway)
{
    const auto measureGain = [](const FXParamEq& record, double hz) {
        constexpr float amplitude = 0.5f;
        ParamEqEffect equaliser(record, {rateHz, 1});
        const Pcm sine = MakeSine(hz, amplitude, rateHz, rateHz);
        // Until everything that does not last has died away.
        Through(equaliser, sine);
        return ToDecibels(GetAmplitude(Through(equaliser, sine), hz, rateHz) / amplitude);
    };
    struct Row
    {
        FXParamEq record;
        double lowEdgeHz, highEdgeHz; ///< Whole numbers, so that the sines of two seconds join.
    };
    const Row rows[] = {{{1000.0f, 12.0f, 15.0f}, 707, 1414}, {{1000.0f, 12.0f, -9.0f}, 707, 1414},
        {{1000.0f, 36.0f, 6.0f}, 354, 2828}, {{400.0f, 1.0f, 12.0f}, 389, 412}};
    for (const auto& [record, lowEdgeHz, highEdgeHz] : rows) {
        SCOPED_TRACE("width " + std::to_string(record.bandwidth) + ", gain " + std::to_string(record.gain));
        EXPECT_NEAR(measureGain(record, record.center), record.gain, 0.02);
        EXPECT_NEAR(measureGain(record, lowEdgeHz), record.gain / 2, 0.25);
        EXPECT_NEAR(measureGain(record, highEdgeHz), record.gain / 2, 0.25);
        EXPECT_NEAR(measureGain(record, 10), 0.0, 0.1);
        EXPECT_NEAR(measureGain(record, 20000), 0.0, 0.1);
    }
}

} // namespace
} // namespace Quon::Testing
