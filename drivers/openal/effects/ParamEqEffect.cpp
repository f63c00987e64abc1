#include "drivers/openal/effects/ParamEqEffect.h"

#include "drivers/openal/effects/Defaults.h"
#include "drivers/openal/effects/Units.h"

namespace Quon
{

namespace
{

constexpr double semitonesPerOctave = 12.0;

FXParamEq ClampParamEq(const FXParamEq& wanted, int rateHz)
{
    FXParamEq clamped = ClampToRanges(SndFXParamEq, wanted);
    clamped.center = std::min(clamped.center, GetHighestFilterHz(rateHz));
    return clamped;
}

} // namespace

ParamEqEffect::ParamEqEffect(const FXParamEq& wanted, const PcmLayout& pcmLayout)
    : EffectWith(ClampParamEq(wanted, pcmLayout.rateHz), pcmLayout)
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
