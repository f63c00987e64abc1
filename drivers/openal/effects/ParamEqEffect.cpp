#include "drivers/openal/effects/ParamEqEffect.h"

#include "drivers/openal/effects/Defaults.h"
#include "drivers/openal/effects/Units.h"

namespace Quon
{

namespace
{

constexpr double semitonesPerOctave = 12.0;

FXParamEq HoldParamEq(const FXParamEq& wanted, int rateHz)
{
    const auto& fallback = GetDefault<FXParamEq>(SndFXParamEq);
    const float highestHz = std::min(16000.0F, GetHighestFilterHz(rateHz));
    return {Hold(wanted.center, 80.0F, highestHz, fallback.center),
        Hold(wanted.bandwidth, 1.0F, 36.0F, fallback.bandwidth),
        Hold(wanted.gain, -15.0F, 15.0F, fallback.gain)};
}

} // namespace

ParamEqEffect::ParamEqEffect(const FXParamEq& wanted, const PcmLayout& pcmLayout)
    : EffectWith(HoldParamEq(wanted, pcmLayout.rateHz), pcmLayout)
    , peak(BiquadFactors::MakePeak(
          parameters.center, parameters.bandwidth / semitonesPerOctave, parameters.gain, layout.rateHz))
{
}

void ParamEqEffect::Apply(std::span<float> pcm)
{
    const auto channels = static_cast<std::size_t>(layout.channels);
    for (std::size_t i = 0; i < pcm.size(); i += channels) {
        for (std::size_t channel = 0; channel < channels; ++channel) {
            pcm[i + channel] = peak.Filter(channel, pcm[i + channel]);
        }
    }
}

} // namespace Quon
