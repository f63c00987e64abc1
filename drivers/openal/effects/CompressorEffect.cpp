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

/// How many sample frames are worked on at a time.
constexpr std::size_t pieceFrames = 64;

} // namespace

CompressorEffect::CompressorEffect(const FXCompressor& wanted, const PcmLayout& pcmLayout)
    : EffectWith(ClampToRanges(SndFXCompressor, wanted), pcmLayout)
    , gain(ToFactor(parameters.gain))
    , threshold(ToFactor(parameters.threshold))
    , slope(1.0F / parameters.ratio - 1.0F)
    , rise(GetStep(parameters.attack, layout.rateHz))
    , fall(GetStep(parameters.release, layout.rateHz))
    , predelay(static_cast<int>(std::lround(ToSampleFrames(parameters.predelay, layout.rateHz))))
    , peaks(predelay + 1)
{
}

void CompressorEffect::Apply(std::span<float> pcm)
{
    const auto channels = static_cast<std::size_t>(layout.channels);
    const float scale = 1.0F / threshold;
    std::array<float, pieceFrames> buffer;
    while (!pcm.empty()) {
        const std::size_t frames = std::min(pcm.size() / channels, pieceFrames);
        const std::span<float> gains = std::span(buffer).first(frames);
        for (std::size_t i = 0; i < frames; ++i) {
            FollowLevel(GetPeak(pcm.subspan(i * channels, channels)));
            gains[i] = std::max(level * scale, 1.0F);
        }
        TurnIntoGains(gains);
        for (std::size_t i = 0; i < frames; ++i) {
            for (std::size_t channel = 0; channel < channels; ++channel) {
                pcm[i * channels + channel] *= gains[i];
            }
        }
        pcm = pcm.subspan(frames * channels);
    }
}

void CompressorEffect::FollowLevel(float peak)
{
    peaks.Push(peak);
    const float target = peaks.GetTap(static_cast<std::size_t>(predelay) + 1);
    // Both ways at once, since the processor could not foresee which of them a sound takes. Of two steps in
    // one direction the larger part goes farther.
    const float rising = level + rise * (target - level);
    const float falling = level + fall * (target - level);
    level = rise > fall ? std::max(rising, falling) : std::min(rising, falling);
}

// From how often the levels are above the threshold. By itself, so that the compiler can reckon several gains
// at once.
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
