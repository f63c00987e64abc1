#include "drivers/openal/effects/GargleEffect.h"

#include "drivers/openal/effects/Defaults.h"

#include <algorithm>

namespace Quon
{

namespace
{

enum WaveShape
{
    Triangle = 0,
    Square = 1
};

FXGargle ClampGargle(const FXGargle& wanted, int rateHz)
{
    FXGargle clamped = ClampToRanges(SndFXGargle, wanted);
    clamped.rateHz = std::min(clamped.rateHz, std::max(rateHz / 2, 1));
    return clamped;
}

} // namespace

GargleEffect::GargleEffect(const FXGargle& wanted, const PcmLayout& pcmLayout)
    : EffectWith(ClampGargle(wanted, pcmLayout.rateHz), pcmLayout)
    , oscillator(parameters.rateHz, layout.rateHz)
{
}

void GargleEffect::Apply(std::span<float> pcm)
{
    const auto channels = static_cast<std::size_t>(layout.channels);
    for (std::size_t i = 0; i < pcm.size(); i += channels) {
        const float gain = GetGain();
        for (std::size_t channel = 0; channel < channels; ++channel) {
            pcm[i + channel] *= gain;
        }
        oscillator.Advance();
    }
}

float GargleEffect::GetGain() const
{
    const std::uint32_t phase = oscillator.GetPhase();
    if (parameters.waveShape == Square) {
        return phase < 2 * Oscillator::quarterTurn ? 1.0F : 0.0F;
    }
    return 0.5F + 0.5F * GetTriangle(phase - Oscillator::quarterTurn);
}

} // namespace Quon
