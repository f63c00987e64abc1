#include "drivers/openal/effects/WavesReverbEffect.h"
#include "examples/effects/Decay.h"
#include "tests/drivers/effects/Signals.h"

#include <gtest/gtest.h>

#include <numeric>
#include <string>

namespace Quon::Testing
{
namespace
{

double GetPower(const Pcm& pcm)
{
    return std::inner_product(pcm.begin(), pcm.end(), pcm.begin(), 0.0) / static_cast<double>(pcm.size());
}

TEST(WavesReverb, DecaysInItsTimeAndByItsRatioAtHighFrequencies)
{
    struct Row
    {
        int rateHz;
        FXWavesReverb record;
        double bandHz, decayMs;
    };
    const Row rows[] = {
        {22050, {0, 0, 3000, 0.001F}, 500, 3000},
        {22050, {0, 0, 250, 0.001F}, 500, 250},
        {44100, {-6, -10, 2000, 0.5F}, 500, 2000},
        {11025, {0, 0, 1500, 0.2F}, 500, 1500},
        {44100, {0, 0, 2000, 0.25F}, 16000, 500},
        {44100, {0, 0, 2000, 0.999F}, 16000, 2000},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE("row " + std::to_string(&row - rows));
        WavesReverbEffect reverb(row.record, {row.rateHz, 1});
        const double seconds = row.record.reverbTime / 1000 + 0.2;
        const Pcm out = Through(reverb, MakeImpulse(static_cast<std::size_t>(row.rateHz * seconds)));
        // Without the direct sound.
        const std::vector<double> response(out.begin() + 1, out.end());
        const double decayMs = 1000 * EffectsExample::MeasureDecay(response, row.rateHz, row.bandHz);
        EXPECT_NEAR(decayMs, row.decayMs, 0.1 * row.decayMs);
    }
}

TEST(WavesReverb, KeepsTheInputLevelTimesItsGain)
{
    const Pcm left = MakeNoise(6 * 22050, 0.5F, 1);
    const Pcm right = MakeNoise(6 * 22050, 0.5F, 2);
    for (const float timeMs : {1.0F, 100.0F, 1000.0F, 3000.0F}) {
        for (const float mix : {-96.0F, -3.0F, 0.0F}) {
            WavesReverbEffect reverb({-6, mix, timeMs, 0.999F}, {22050, 2});
            const Pcm out = Through(reverb, MakeStereo(left, right));
            const Pcm settled(out.begin() + static_cast<std::ptrdiff_t>(out.size() / 2), out.end());
            EXPECT_NEAR(10 * std::log10(GetPower(settled) / GetPower(left)), -6.0, 1.0)
                << "time " << timeMs << ", mix " << mix;
        }
    }
}

TEST(WavesReverb, DecorrelatesBothSides)
{
    WavesReverbEffect reverb({0, 0, 1000, 0.999F}, {22050, 2});
    const Pcm noise = MakeNoise(4 * 22050, 0.5F);
    const Pcm out = Through(reverb, MakeStereo(noise, Pcm(noise.size())));
    const Pcm left = TakeSide(out, 0);
    const Pcm right = TakeSide(out, 1);
    EXPECT_NEAR(10 * std::log10(GetPower(left) / GetPower(right)), 0.0, 1.5);
    const double common =
        std::inner_product(left.begin(), left.end(), right.begin(), 0.0) / static_cast<double>(left.size());
    EXPECT_LT(std::fabs(common), 0.2 * std::sqrt(GetPower(left) * GetPower(right)));
}

} // namespace
} // namespace Quon::Testing
