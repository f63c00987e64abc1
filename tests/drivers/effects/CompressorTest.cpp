#include "drivers/openal/effects/CompressorEffect.h"
#include "tests/drivers/effects/Signals.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>

namespace Quon::Testing
{
namespace
{

constexpr int rateHz = 22050;

/// A tone of one level: every sample is the amplitude or its opposite.
Pcm MakeSquare(double amplitude, std::size_t sampleFrames)
{
    Pcm pcm(sampleFrames);
    for (std::size_t i = 0; i < sampleFrames; ++i) {
        pcm[i] = static_cast<float>(i / 20 % 2 == 0 ? amplitude : -amplitude);
    }
    return pcm;
}

double FromDecibels(double decibels)
{
    return std::pow(10, decibels / 20);
}

TEST(Compressor, FollowsTheStaticCurve)
{
    struct Row
    {
        float gain;
        float threshold;
        float ratio;
    };
    const Row rows[] = {{0, -20, 3}, {6, -40, 1}, {-12, -30, 100}, {60, -60, 2}, {0, 0, 5}};
    for (const Row& row : rows) {
        for (int level = -70; level <= 12; level += 5) {
            SCOPED_TRACE("threshold " + std::to_string(row.threshold) + ", level " + std::to_string(level));
            CompressorEffect compressor(
                {row.gain, 0.01f, 50.0f, row.threshold, row.ratio, 0.0f}, {rateHz, 1});
            const Pcm out = Through(compressor, MakeSquare(FromDecibels(level), rateHz / 10));
            const double above = std::max(level - double{row.threshold}, 0.0);
            EXPECT_NEAR(
                ToDecibels(std::fabs(out.back())), level - above + above / row.ratio + row.gain, 0.01);
        }
    }
}

// The level is that of an RC circuit: it goes exponentially from where it is to where it is drawn.
TEST(Compressor, TakesItsTimeConstantsToRiseAndToFall)
{
    constexpr double attackMs = 20;
    constexpr double releaseMs = 120;
    constexpr double threshold = 0.01;
    constexpr double ratio = 4;
    CompressorEffect compressor({0, attackMs, releaseMs, -40.0f, ratio, 0.0f}, {rateHz, 1});
    const auto getGain = [](double level) {
        return std::pow(std::max(level / threshold, 1.0), 1 / ratio - 1);
    };
    const auto toMs = [](std::size_t i) { return static_cast<double>(i + 1) * 1000 / rateHz; };

    constexpr double loud = 0.8;
    const Pcm risen = Through(compressor, MakeSquare(loud, rateHz));
    for (std::size_t i = 0; i < risen.size(); i += 50) {
        SCOPED_TRACE(toMs(i));
        const double level = loud * (1 - std::exp(-toMs(i) / attackMs));
        EXPECT_NEAR(std::fabs(risen[i]) / loud, getGain(level), 1e-3);
    }
    constexpr double soft = 0.02;
    const Pcm fallen = Through(compressor, MakeSquare(soft, rateHz));
    for (std::size_t i = 0; i < fallen.size(); i += 50) {
        SCOPED_TRACE(toMs(i));
        const double level = soft + (loud - soft) * std::exp(-toMs(i) / releaseMs);
        EXPECT_NEAR(std::fabs(fallen[i]) / soft, getGain(level), 1e-3);
    }
}

TEST(Compressor, LetsASoundThroughForThePredelay)
{
    CompressorEffect prompt({0, 1.0f, 50.0f, -40.0f, 10.0f, 0.0f}, {rateHz, 1});
    CompressorEffect late({0, 1.0f, 50.0f, -40.0f, 10.0f, 4.0f}, {rateHz, 1});
    constexpr std::size_t predelay = 88; // 4 ms
    const Pcm tone(400, 0.5f);
    const Pcm atOnce = Through(prompt, tone);
    const Pcm later = Through(late, tone);
    for (std::size_t i = 0; i < tone.size(); ++i) {
        SCOPED_TRACE(i);
        EXPECT_FLOAT_EQ(later[i], i < predelay ? 0.5f : atOnce[i - predelay]);
    }
}

TEST(Compressor, LowersBothSidesByTheLouderOne)
{
    const FXCompressor record = {0, 5.0f, 50.0f, -40.0f, 10.0f, 1.0f};
    CompressorEffect stereo(record, {rateHz, 2});
    CompressorEffect mono(record, {rateHz, 1});
    const Pcm loud = MakeSquare(0.5, rateHz / 10);
    const Pcm soft = MakeSquare(0.05, rateHz / 10);
    const Pcm out = Through(stereo, MakeStereo(soft, loud));
    const Pcm expected = Through(mono, loud);
    EXPECT_EQ(TakeSide(out, 1), expected);
    EXPECT_NEAR(out[out.size() - 2] / out.back(), 0.1, 1e-5);
}

} // namespace
} // namespace Quon::Testing
