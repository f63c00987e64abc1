#include "drivers/openal/effects/DistortionEffect.h"

#include "drivers/openal/effects/Defaults.h"
#include "drivers/openal/effects/Units.h"

#include <cmath>

namespace Quon
{

namespace
{

FXDistortion ClampDistortion(const FXDistortion& wanted, int rateHz)
{
    FXDistortion clamped = ClampToRanges(SndFXDistortion, wanted);
    const float highestHz = GetHighestFilterHz(rateHz);
    clamped.postEQCenterFrequency = std::min(clamped.postEQCenterFrequency, highestHz);
    clamped.postEQBandwidth = std::min(clamped.postEQBandwidth, highestHz);
    clamped.preLowpassCutoff = std::min(clamped.preLowpassCutoff, highestHz);
    return clamped;
}

float GetBend(float edgePercent)
{
    // A full edge would switch between -1 and 1, even for noise.
    constexpr float sharpest = 0.99F;
    const float edge = sharpest * ToPart(edgePercent);
    return 2.0F * edge / (1.0F - edge);
}

} // namespace

DistortionEffect::DistortionEffect(const FXDistortion& wanted, const PcmLayout& pcmLayout)
    : EffectWith(ClampDistortion(wanted, pcmLayout.rateHz), pcmLayout)
    , gain(ToFactor(parameters.gain))
    , bend(GetBend(parameters.edge))
    , lowPass(BiquadFactors::MakeLowPass(parameters.preLowpassCutoff, layout.rateHz))
    , bandPass(BiquadFactors::MakeBandPass(
          parameters.postEQCenterFrequency, parameters.postEQBandwidth, layout.rateHz))
{
}

void DistortionEffect::Apply(std::span<float> pcm)
{
    const auto channels = static_cast<std::size_t>(layout.channels);
    const float steep = 1.0F + bend;
    for (std::size_t i = 0; i < pcm.size(); i += channels) {
        for (std::size_t channel = 0; channel < channels; ++channel) {
            float& sample = pcm[i + channel];
            const float low = lowPass.Filter(channel, sample);
            const float bent = steep * low / (1.0F + bend * std::fabs(low));
            sample = gain * bandPass.Filter(channel, bent);
        }
    }
}

void DistortionEffect::Reset()
{
    lowPass.Reset();
    bandPass.Reset();
}

} // namespace Quon
