// What holds for each of the effects, whatever it does to a sound.

#include "drivers/openal/effects/CompressorEffect.h"
#include "drivers/openal/effects/DistortionEffect.h"
#include "drivers/openal/effects/EchoEffect.h"
#include "drivers/openal/effects/GargleEffect.h"
#include "drivers/openal/effects/ParamEqEffect.h"
#include "drivers/openal/effects/SweptEffect.h"
#include "drivers/openal/effects/WavesReverbEffect.h"
#include "tests/drivers/effects/Signals.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <memory>
#include <random>
#include <string>

namespace Quon::Testing
{
namespace
{

constexpr int rateHz = 22050;
constexpr float infinity = std::numeric_limits<float>::infinity();

struct EffectCase
{
    const char* name;
    std::unique_ptr<Effect> (*make)(const PcmLayout& layout);
};

template<class MadeEffect, auto record>
std::unique_ptr<Effect> MakeWith(const PcmLayout& layout)
{
    return std::make_unique<MadeEffect>(record, layout);
}

// Without a phase between the sides, so that these are comparable; otherwise everything at work.
const EffectCase everyEffect[] = {
    {"chorus", MakeWith<ChorusEffect, FXChorus{50, 40, 60, 1.1f, 1, 16, 2}>},
    {"flanger", MakeWith<FlangerEffect, FXFlanger{50, 100, -50, 0.7f, 0, 2, 2}>},
    {"echo", MakeWith<EchoEffect, FXEcho{50, 50, 30, 30, 1}>},
    {"distortion", MakeWith<DistortionEffect, FXDistortion{-6, 40, 2400, 2400, 7350}>},
    {"compressor", MakeWith<CompressorEffect, FXCompressor{6, 10, 200, -20, 3, 4}>},
    {"equaliser", MakeWith<ParamEqEffect, FXParamEq{300, 12, 10}>},
    {"gargle", MakeWith<GargleEffect, FXGargle{20, 0}>},
    {"reverb", MakeWith<WavesReverbEffect, FXWavesReverb{0, -3, 500, 0.3f}>},
};

class EveryEffect : public testing::TestWithParam<EffectCase>
{
protected:
    static std::unique_ptr<Effect> Make(int channels = 1, int rate = rateHz)
    {
        return GetParam().make({rate, channels});
    }
};

INSTANTIATE_TEST_SUITE_P(, EveryEffect, testing::ValuesIn(everyEffect),
    [](const auto& given) { return std::string(given.param.name); });

/// Infinite if one of the samples is no number.
float GetPeak(const Pcm& pcm)
{
    float peak = 0.0f;
    for (const float sample : pcm) {
        peak = std::max(peak, std::isfinite(sample) ? std::fabs(sample) : infinity);
    }
    return peak;
}

TEST_P(EveryEffect, DoesNotDependOnHowTheSoundIsCutAndIsAsNewAfterAReset)
{
    for (const int channels : {1, 2}) {
        const Pcm noise = MakeNoise(static_cast<std::size_t>(rateHz * channels), 0.8f);
        const auto effect = Make(channels);
        const Pcm whole = Through(*effect, noise);
        effect->Reset();
        Pcm pieces = noise;
        std::mt19937 random(7);
        std::uniform_int_distribution<std::size_t> length(0, 300);
        for (std::span<float> rest = pieces; !rest.empty();) {
            const std::size_t size =
                std::min(length(random) * static_cast<std::size_t>(channels), rest.size());
            effect->Process(rest.first(size));
            rest = rest.subspan(size);
        }
        EXPECT_EQ(pieces, whole) << channels << " channels";
    }
}

TEST_P(EveryEffect, TreatsOneChannelAsTheLeftOfTwoEqualOnes)
{
    const Pcm noise = MakeNoise(rateHz, 0.8f);
    EXPECT_EQ(TakeSide(Through(*Make(2), MakeStereo(noise, noise)), 0), Through(*Make(1), noise));
}

TEST_P(EveryEffect, GetsOverBrokenSamples)
{
    const Pcm broken = {std::nanf(""), 0.5f, infinity, -infinity, std::numeric_limits<float>::max(), -0.5f};
    const auto effect = Make(2);
    EXPECT_LT(GetPeak(Through(*effect, broken)), infinity);
    const Pcm after = Through(*effect, Pcm(20 * rateHz));
    EXPECT_LT(GetPeak(after), infinity);
    EXPECT_LT(std::fabs(after.back()), 1e-6f);
    EXPECT_GT(GetPeak(Through(*effect, MakeNoise(rateHz, 0.8f))), 0.01f);
}

TEST_P(EveryEffect, DiesAwayToSilenceWithoutTinyNumbersAndLeavesTheCallersArithmeticAlone)
{
    const auto effect = Make();
    Through(*effect, MakeNoise(rateHz, 0.8f));
    const Pcm tail = Through(*effect, Pcm(60 * rateHz));
    EXPECT_FALSE(std::any_of(
        tail.begin(), tail.end(), [](float sample) { return std::fpclassify(sample) == FP_SUBNORMAL; }));
    EXPECT_EQ(tail.back(), 0.0f);
    volatile float smallest = std::numeric_limits<float>::min();
    volatile float half = smallest / 2;
    EXPECT_GT(half, 0.0f);
}

// Broken files state such rates.
TEST_P(EveryEffect, WorksAtAnyRate)
{
    for (const int rate : {1, 7, 100, 768000}) {
        EXPECT_LT(GetPeak(Through(*Make(2, rate), MakeNoise(20000, 0.8f))), 20.0f) << rate;
    }
}

} // namespace
} // namespace Quon::Testing
