#include "drivers/openal/effects/CompressorEffect.h"

#include "drivers/openal/effects/Defaults.h"
#include "drivers/openal/effects/Powers.h"
#include "drivers/openal/effects/Units.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace Quon
{

namespace
{

float GetStep(float timeConstantMs, int rateHz)
{
    return static_cast<float>(-std::expm1(-1.0 / ToSampleFrames(timeConstantMs, rateHz)));
}

float GetPeak(std::span<const float> sampleFrame)
{
    float peak = 0.0F;
    for (const float sample : sampleFrame) {
        peak = std::max(peak, std::fabs(sample));
    }
    return peak;
}

/// Number of sample frames processed at a time.
constexpr std::size_t pieceSampleFrames = 64;

} // namespace

CompressorEffect::CompressorEffect(const FXCompressor& wanted, const PcmLayout& pcmLayout)
    : EffectWith(ClampToRanges(SndFXCompressor, wanted), pcmLayout)
    , gain(ToFactor(parameters.gain))
    , threshold(ToFactor(parameters.threshold))
    , slope(1.0F / parameters.ratio - 1.0F)
    , attackStep(GetStep(parameters.attack, layout.rateHz))
    , releaseStep(GetStep(parameters.release, layout.rateHz))
    , predelay(static_cast<int>(std::lround(ToSampleFrames(parameters.predelay, layout.rateHz))))
    , peaks(predelay + 1)
{
}

void CompressorEffect::Apply(std::span<float> pcm)
{
    const auto channels = static_cast<std::size_t>(layout.channels);
    const float scale = 1.0F / threshold;
    std::array<float, pieceSampleFrames> buffer;
    while (!pcm.empty()) {
        const std::size_t sampleFrames = std::min(pcm.size() / channels, pieceSampleFrames);
        const std::span<float> gains = std::span(buffer).first(sampleFrames);
        for (std::size_t i = 0; i < sampleFrames; ++i) {
            FollowLevel(GetPeak(pcm.subspan(i * channels, channels)));
            gains[i] = std::max(level * scale, 1.0F);
        }
        TurnIntoGains(gains);
        for (std::size_t i = 0; i < sampleFrames; ++i) {
            for (std::size_t channel = 0; channel < channels; ++channel) {
                pcm[i * channels + channel] *= gains[i];
            }
        }
        pcm = pcm.subspan(sampleFrames * channels);
    }
}

void CompressorEffect::FollowLevel(float peak)
{
    peaks.Push(peak);
    const float target = peaks.GetTap(static_cast<std::size_t>(predelay) + 1);
    // Computes both directions, since a branch would be unpredictable. Of two steps in the same direction,
    // the one with the larger coefficient goes farther.
    const float rising = level + attackStep * (target - level);
    const float falling = level + releaseStep * (target - level);
    level = attackStep > releaseStep ? std::max(rising, falling) : std::min(rising, falling);
}

// Computes gains from the ratios of level to threshold. A separate loop, so that the compiler can vectorise
// it.
void CompressorEffect::TurnIntoGains(std::span<float> above) const
{
    const float exponent = slope;
    const float factor = gain;
    for (float& value : above) {
        value = factor * GetExp2(exponent * GetLog2(value));
    }
}

void CompressorEffect::Reset()
{
    peaks.Clear();
    level = 0.0F;
}

} // namespace Quon
