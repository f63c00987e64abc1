// Properties that every effect has.

#include "drivers/openal/effects/CompressorEffect.h"
#include "drivers/openal/effects/DistortionEffect.h"
#include "drivers/openal/effects/EchoEffect.h"
#include "drivers/openal/effects/EffectChain.h"
#include "drivers/openal/effects/GargleEffect.h"
#include "drivers/openal/effects/ParamEqEffect.h"
#include "drivers/openal/effects/SweptEffect.h"
#include "drivers/openal/effects/WavesReverbEffect.h"
#include "harmonet/definitions/EffectKeywords.h"
#include "harmonet/definitions/SndFXList.h"
#include "tests/drivers/effects/OwnedList.h"
#include "tests/drivers/effects/Signals.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
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

template<class AnyEffect, class Record>
void ExpectApplied(const Record& wanted, const Record& expected, int rate)
{
    using Words = std::array<std::uint32_t, sizeof(Record) / 4>;
    const AnyEffect effect(wanted, {rate, 1});
    EXPECT_EQ(std::bit_cast<Words>(effect.GetParameters()), std::bit_cast<Words>(expected));
}

template<class Record>
void SetField(Record& record, const EffectField& field, double value)
{
    auto* const place = reinterpret_cast<unsigned char*>(&record) + field.offset;
    const auto number = static_cast<float>(value);
    const auto whole = static_cast<std::int32_t>(field.isInt ? value : 0);
    std::memcpy(place, field.isInt ? static_cast<const void*>(&whole) : &number, 4);
}

/// At a rate at which no filter is limited by the rate.
template<class AnyEffect, class Record, SndFX kind>
void ExpectHeld()
{
    Record defaults;
    std::memcpy(&defaults, GetFXDefault(kind).record, sizeof defaults);
    Record least{}, most{}, tooLow{}, tooHigh{}, none = defaults;
    for (const EffectField& field : GetEffectKeywords(kind).fields) {
        const double enormous = field.isInt ? 2147483647.0 : double{infinity};
        SetField(tooLow, field, -enormous);
        SetField(least, field, field.minimum);
        SetField(most, field, field.maximum);
        SetField(tooHigh, field, enormous);
        if (!field.isInt) {
            SetField(none, field, std::nan(""));
        }
    }
    const std::pair<Record, Record> rows[] = {{tooLow, least}, {tooHigh, most}, {none, defaults}};
    for (const auto& [wanted, expected] : rows) {
        ExpectApplied<AnyEffect>(wanted, expected, 96000);
    }
}

struct EffectCase
{
    const char* name;
    std::unique_ptr<Effect> (*make)(const PcmLayout& layout);
    void (*expectHeld)();
    void (*addTo)(OwnedList& list);
};

template<class AnyEffect, SndFX kind, auto record>
constexpr EffectCase MakeCase(const char* name)
{
    const auto make = [](const PcmLayout& layout) -> std::unique_ptr<Effect> {
        return std::make_unique<AnyEffect>(record, layout);
    };
    const auto addTo = [](OwnedList& list) { list.Add(kind, record); };
    return {name, make, ExpectHeld<AnyEffect, std::remove_const_t<decltype(record)>, kind>, addTo};
}

// Without a phase between the sides, so that these are comparable; otherwise everything at work.
const EffectCase everyEffect[] = {
    MakeCase<ChorusEffect, SndFXChorus, FXChorus{50, 40, 60, 1.1F, 1, 16, 2}>("chorus"),
    MakeCase<FlangerEffect, SndFXFlanger, FXFlanger{50, 100, -50, 0.7F, 0, 2, 2}>("flanger"),
    MakeCase<EchoEffect, SndFXEcho, FXEcho{50, 50, 30, 30, 1}>("echo"),
    MakeCase<DistortionEffect, SndFXDistortion, FXDistortion{-6, 40, 2400, 2400, 7350}>("distortion"),
    MakeCase<CompressorEffect, SndFXCompressor, FXCompressor{6, 10, 200, -20, 3, 4}>("compressor"),
    MakeCase<ParamEqEffect, SndFXParamEq, FXParamEq{300, 12, 10}>("equaliser"),
    MakeCase<GargleEffect, SndFXGargle, FXGargle{20, 0}>("gargle"),
    MakeCase<WavesReverbEffect, SndFXWavesReverb, FXWavesReverb{0, -3, 500, 0.3F}>("reverb"),
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

/// Infinity if one of the samples is NaN.
float GetPeak(const Pcm& pcm)
{
    float peak = 0.0F;
    for (const float sample : pcm) {
        peak = std::max(peak, std::isfinite(sample) ? std::fabs(sample) : infinity);
    }
    return peak;
}

TEST_P(EveryEffect, ClampsParametersAndUsesDefaultsForNaN)
{
    GetParam().expectHeld();
}

TEST(Filters, KeepBelowAThirdOfTheRate)
{
    ExpectApplied<ParamEqEffect, FXParamEq>({16000, 12, 3}, {7350, 12, 3}, 22050);
    ExpectApplied<ParamEqEffect, FXParamEq>({std::nanf(""), 12, 3}, {3675, 12, 3}, 11025);
    ExpectApplied<DistortionEffect, FXDistortion>(
        {-18, 15, 8000, 8000, 8000}, {-18, 15, 7350, 7350, 7350}, 22050);
    ExpectApplied<GargleEffect, FXGargle>({1000, 1}, {60, 1}, 120);
}

TEST_P(EveryEffect, IsIndependentOfBlockSizesAndResets)
{
    for (const int channels : {1, 2}) {
        const Pcm noise = MakeNoise(static_cast<std::size_t>(channels) * rateHz, 0.8F);
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

TEST_P(EveryEffect, TreatsMonoLikeTheLeftOfTwoEqualChannels)
{
    const Pcm noise = MakeNoise(rateHz, 0.8F);
    EXPECT_EQ(TakeSide(Through(*Make(2), MakeStereo(noise, noise)), 0), Through(*Make(1), noise));
}

TEST_P(EveryEffect, IsMadeByAChainFromItsRecord)
{
    const Pcm noise = MakeNoise(rateHz, 0.8F);
    OwnedList list;
    GetParam().addTo(list);
    EffectChain chain;
    chain.Build(list.Get(), {rateHz, 1});
    EXPECT_EQ(Through(chain, noise), Through(*Make(), noise));
}

TEST_P(EveryEffect, RecoversFromInvalidSamples)
{
    const Pcm broken = {std::nanf(""), 0.5F, infinity, -infinity, std::numeric_limits<float>::max(), -0.5F};
    const auto effect = Make(2);
    EXPECT_LT(GetPeak(Through(*effect, broken)), infinity);
    const Pcm after = Through(*effect, Pcm(20 * rateHz));
    EXPECT_LT(GetPeak(after), infinity);
    EXPECT_LT(std::fabs(after.back()), 1e-6F);
    EXPECT_GT(GetPeak(Through(*effect, MakeNoise(rateHz, 0.8F))), 0.01F);
}

TEST_P(EveryEffect, DecaysToSilenceWithoutDenormals)
{
    const auto effect = Make();
    Through(*effect, MakeNoise(rateHz, 0.8F));
    const Pcm tail = Through(*effect, Pcm(60 * rateHz));
    EXPECT_FALSE(std::any_of(
        tail.begin(), tail.end(), [](float sample) { return std::fpclassify(sample) == FP_SUBNORMAL; }));
    EXPECT_EQ(tail.back(), 0.0F);
    volatile float smallest = std::numeric_limits<float>::min();
    volatile float half = smallest / 2;
    EXPECT_GT(half, 0.0F);
}

// Broken files state such rates.
TEST_P(EveryEffect, WorksAtAnyRate)
{
    for (const int rate : {1, 7, 100, 768000}) {
        EXPECT_LT(GetPeak(Through(*Make(2, rate), MakeNoise(20000, 0.8F))), 20.0F) << rate;
    }
}

} // namespace
} // namespace Quon::Testing
