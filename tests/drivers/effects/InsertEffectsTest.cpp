// Effects of level and of fixed delays, compared with their formulas.

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

/// A simple compressor: the level is that of an RC circuit, and its excess over the threshold is divided by
/// the ratio.
Pcm CompressPlainly(const FXCompressor& record, const Pcm& stereo)
{
    const auto ahead = static_cast<std::size_t>(std::lround(record.predelay * rateHz / 1000));
    double level = 0;
    Pcm out = stereo;
    for (std::size_t i = 0; i < out.size(); i += 2) {
        const std::size_t heard = i - 2 * ahead;
        const double peak =
            i < 2 * ahead ? 0.0 : std::max(std::fabs(stereo[heard]), std::fabs(stereo[heard + 1]));
        const double timeConstantMs = peak > level ? record.attack : record.release;
        level = peak + (level - peak) * std::exp(-1000 / (timeConstantMs * rateHz));
        const double above = std::max(ToDecibels(level) - record.threshold, 0.0);
        const double gain = std::pow(10, (record.gain - above + above / record.ratio) / 20);
        out[i] = static_cast<float>(stereo[i] * gain);
        out[i + 1] = static_cast<float>(stereo[i + 1] * gain);
    }
    return out;
}

TEST(Compressor, MatchesItsFormula)
{
    Pcm left = MakeNoise(rateHz, 1.0F, 1);
    Pcm right = MakeNoise(rateHz, 1.0F, 2);
    for (std::size_t i = 0; i < left.size(); ++i) {
        left[i] *= i < 5000 ? 0.001F : i < 20000 ? 0.8F : 0.02F;
        right[i] *= i < 30000 ? 0.05F : 3.0F;
    }
    const Pcm sound = MakeStereo(left, right);
    const FXCompressor records[] = {{0, 20, 120, -40, 4, 0}, {6, 5, 50, -20, 100, 4},
        {-12, 500, 50, -60, 2, 1}, {60, 0.01F, 3000, 0, 5, 2}, {3, 10, 200, -30, 1, 0}};
    for (const FXCompressor& record : records) {
        CompressorEffect compressor(record, {rateHz, 2});
        const Pcm out = Through(compressor, sound);
        const Pcm expected = CompressPlainly(record, sound);
        for (std::size_t i = 0; i < out.size(); ++i) {
            ASSERT_NEAR(out[i], expected[i], 0.001 * std::fabs(expected[i]) + 1e-6)
                << "ratio " << record.ratio << ", sample " << i;
        }
    }
}

// The gain of the analogue prototypes at the frequency to which the bilinear transform maps `hz`.
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

/// The amplitude of a harmonic of a distorted sine, integrated over a period.
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

TEST(Distortion, HasTheHarmonicsOfItsCurveAfterItsFilters)
{
    // Chosen so that no aliased harmonic coincides with another one.
    constexpr int sineHz = 301;
    constexpr float amplitude = 0.5F;
    const FXDistortion records[] = {{-18.0F, 15.0F, 2400.0F, 2400.0F, 7350.0F},
        {0.0F, 0.0F, 300.0F, 8000.0F, 8000.0F}, {-6.0F, 60.0F, 1000.0F, 4000.0F, 400.0F},
        {-40.0F, 85.0F, 5000.0F, 1000.0F, 8000.0F}};
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
TEST(Echo, FollowsFeedbackMixAndPan)
{
    using Taps = std::map<std::size_t, float>; ///< By sample frames; those of both sides interleaved.
    struct Row
    {
        FXEcho record;
        int channels;
        Taps taps;
    };
    const Row rows[] = {
        {{40, 50, 30, 500, 0}, 1, {{0, 0.6F}, {240, 0.4F}, {480, 0.2F}, {720, 0.1F}, {960, 0.05F}}},
        {{100, 50, 30, 50, 0}, 2,
            {{480, 1.0F}, {960, 0.5F}, {1440, 0.25F}, {1920, 0.125F}, {801, 1.0F}, {1601, 0.5F}}},
        {{100, 50, 30, 50, 1}, 2, {{480, 1.0F}, {801, 1.0F}, {1281, 0.5F}, {1280, 0.5F}, {1760, 0.25F}}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE("row " + std::to_string(&row - rows));
        EchoEffect echo(row.record, {8000, row.channels});
        const Pcm mono = MakeImpulse(1000);
        const Pcm out = Through(echo, row.channels == 1 ? mono : MakeStereo(mono, mono));
        for (std::size_t i = 0; i < out.size(); ++i) {
            const auto tap = row.taps.find(i);
            EXPECT_NEAR(out[i], tap != row.taps.end() ? tap->second : 0.0F, 1e-6F) << i;
        }
    }
}

TEST(Gargle, StartsSilentAsATriangleAndFullAsASquare)
{
    constexpr int gargleHz = 50;
    // So many sample frames that a half is exact in binary.
    constexpr std::size_t period = 512;
    constexpr int rate = gargleHz * period;
    const Pcm one(20 * period, 1.0F);
    GargleEffect triangle({gargleHz, 0}, {rate, 1});
    GargleEffect square({gargleHz, 1}, {rate, 1});
    const Pcm risen = Through(triangle, one);
    const Pcm switched = Through(square, one);
    for (std::size_t i = 0; i < one.size(); ++i) {
        const double turn = static_cast<double>(i % period) / static_cast<double>(period);
        EXPECT_NEAR(risen[i], turn < 0.5 ? 2 * turn : 2 - 2 * turn, 1e-4) << i;
        EXPECT_EQ(switched[i], turn < 0.5 ? 1.0F : 0.0F) << i;
    }
}

// The definition of a band: all of the gain at its centre, half of its decibels at the edges, which lie half
// of the bandwidth below and above, and none far away.
TEST(ParamEq, HasItsGainAtTheCentreAndHalfAtTheEdges)
{
    const auto measureGain = [](const FXParamEq& record, double hz) {
        constexpr float amplitude = 0.5F;
        ParamEqEffect equaliser(record, {rateHz, 1});
        const Pcm sine = MakeSine(hz, amplitude, rateHz, rateHz);
        // Until transients have decayed.
        Through(equaliser, sine);
        return ToDecibels(GetAmplitude(Through(equaliser, sine), hz, rateHz) / amplitude);
    };
    struct Row
    {
        FXParamEq record;
        double lowEdgeHz, highEdgeHz; ///< Whole numbers, so that the sines of two seconds join.
    };
    const Row rows[] = {{{1000.0F, 12.0F, 15.0F}, 707, 1414}, {{1000.0F, 12.0F, -9.0F}, 707, 1414},
        {{1000.0F, 36.0F, 6.0F}, 354, 2828}, {{400.0F, 1.0F, 12.0F}, 389, 412}};
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
