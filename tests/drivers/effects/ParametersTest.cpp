// What an effect says that it applies: what was asked for, held to the documented range of each parameter.

#include "drivers/openal/effects/CompressorEffect.h"
#include "drivers/openal/effects/DistortionEffect.h"
#include "drivers/openal/effects/EchoEffect.h"
#include "drivers/openal/effects/GargleEffect.h"
#include "drivers/openal/effects/ParamEqEffect.h"
#include "drivers/openal/effects/SweptEffect.h"
#include "drivers/openal/effects/WavesReverbEffect.h"

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cmath>
#include <limits>

namespace Quon::Testing
{
namespace
{

constexpr int rateHz = 22050;
constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float nan = std::numeric_limits<float>::quiet_NaN();
constexpr int mostInt = std::numeric_limits<int>::max();
constexpr int leastInt = std::numeric_limits<int>::min();

template<class AnyEffect, class Record>
void ExpectApplied(const Record& wanted, const Record& expected, int rate = rateHz)
{
    using Words = std::array<std::uint32_t, sizeof(Record) / 4>;
    const AnyEffect effect(wanted, {rate, 1});
    EXPECT_EQ(std::bit_cast<Words>(effect.GetParameters()), std::bit_cast<Words>(expected));
}

TEST(Parameters, AreHeldToTheLowerEnd)
{
    ExpectApplied<ChorusEffect, FXChorus>({-1, -1, -100, -1, -1, -1, -1}, {0, 0, -99, 0, 0, 0, 0});
    ExpectApplied<FlangerEffect, FXFlanger>(
        {-infinity, -1e9f, -99.5f, -0.1f, leastInt, -1, leastInt}, {0, 0, -99, 0, 0, 0, 0});
    ExpectApplied<EchoEffect, FXEcho>({-1, -1, 0, -5, -1}, {0, 0, 1, 1, 0});
    ExpectApplied<DistortionEffect, FXDistortion>({-61, -1, 99, 0, -infinity}, {-60, 0, 100, 100, 100});
    ExpectApplied<CompressorEffect, FXCompressor>({-61, 0, 49, -61, 0.5f, -1}, {-60, 0.01f, 50, -60, 1, 0});
    ExpectApplied<ParamEqEffect, FXParamEq>({79, 0, -16}, {80, 1, -15});
    ExpectApplied<GargleEffect, FXGargle>({0, -1}, {1, 0});
    ExpectApplied<WavesReverbEffect, FXWavesReverb>({-97, -97, 0, 0}, {-96, -96, 0.001f, 0.001f});
}

TEST(Parameters, AreHeldToTheUpperEnd)
{
    ExpectApplied<ChorusEffect, FXChorus>({101, 101, 100, 11, 2, 21, 5}, {100, 100, 99, 10, 1, 20, 4});
    ExpectApplied<FlangerEffect, FXFlanger>(
        {infinity, 1e9f, 99.5f, 10.1f, mostInt, 4.1f, mostInt}, {100, 100, 99, 10, 1, 4, 4});
    ExpectApplied<EchoEffect, FXEcho>({101, 101, 2001, infinity, 7}, {100, 100, 2000, 2000, 1});
    ExpectApplied<DistortionEffect, FXDistortion>(
        {1, 101, 9000, 8001, infinity}, {0, 100, 8000, 8000, 8000}, 44100);
    ExpectApplied<CompressorEffect, FXCompressor>({61, 501, 3001, 1, 101, 5}, {60, 500, 3000, 0, 100, 4});
    ExpectApplied<ParamEqEffect, FXParamEq>({20000, 37, 16}, {16000, 36, 15}, 96000);
    ExpectApplied<GargleEffect, FXGargle>({1001, 2}, {1000, 1});
    ExpectApplied<WavesReverbEffect, FXWavesReverb>({1, 1, 3001, 1}, {0, 0, 3000, 0.999f});
}

TEST(Parameters, KeepFrequenciesBelowAThirdOfTheRate)
{
    ExpectApplied<ParamEqEffect, FXParamEq>({16000, 12, 3}, {7350, 12, 3});
    ExpectApplied<DistortionEffect, FXDistortion>({-18, 15, 8000, 8000, 8000}, {-18, 15, 7350, 7350, 7350});
    ExpectApplied<ParamEqEffect, FXParamEq>({8000, 12, 3}, {40, 12, 3}, 120);
    ExpectApplied<GargleEffect, FXGargle>({1000, 1}, {60, 1}, 120);
}

TEST(Parameters, AreAtTheirDefaultsWhereTheyAreNoNumbers)
{
    ExpectApplied<ChorusEffect, FXChorus>({nan, nan, nan, nan, 0, nan, 4}, {50, 10, 25, 1.1f, 0, 16, 4});
    ExpectApplied<FlangerEffect, FXFlanger>({nan, nan, nan, nan, 1, nan, 0}, {50, 100, -50, 0.25f, 1, 2, 0});
    ExpectApplied<EchoEffect, FXEcho>({nan, nan, nan, nan, 1}, {50, 50, 500, 500, 1});
    ExpectApplied<DistortionEffect, FXDistortion>({nan, nan, nan, nan, nan}, {-18, 15, 2400, 2400, 7350});
    ExpectApplied<CompressorEffect, FXCompressor>({nan, nan, nan, nan, nan, nan}, {0, 10, 200, -20, 3, 4});
    ExpectApplied<ParamEqEffect, FXParamEq>({nan, nan, nan}, {7350, 12, 0});
    ExpectApplied<WavesReverbEffect, FXWavesReverb>({nan, nan, nan, nan}, {0, 0, 1000, 0.001f});
    // The default, too, keeps below a third of the rate.
    ExpectApplied<ParamEqEffect, FXParamEq>({nan, nan, nan}, {3675, 12, 0}, 11025);
}

} // namespace
} // namespace Quon::Testing
