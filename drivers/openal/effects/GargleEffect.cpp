#include "drivers/openal/effects/GargleEffect.h"

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

FXGargle HoldGargle(const FXGargle& wanted, int rateHz)
{
    const int fastest = std::clamp(rateHz / 2, 1, 1000);
    return {
        std::clamp(wanted.rateHz, 1, fastest), std::clamp<std::int32_t>(wanted.waveShape, Triangle, Square)};
}

} // namespace

GargleEffect::GargleEffect(const FXGargle& wanted, const PcmLayout& pcmLayout)
    : EffectWith(HoldGargle(wanted, pcmLayout.rateHz), pcmLayout)
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
