#pragma once

#include "drivers/openal/effects/Biquad.h"
#include "drivers/openal/effects/Effect.h"
#include "harmonet/definitions/FXRecords.h"

namespace Quon
{

/// Overdrives the sound: a low-pass filter, a waveshaper, a band-pass filter and the gain, in this order.
///
/// The curve is (1 + k) x / (1 + k |x|). It keeps silence and full scale and adds odd harmonics. k grows from
/// 0 at an edge of 0 percent, where the curve is linear, to 198 at 100 percent. Frequencies are limited to a
/// third of the rate.
class DistortionEffect final : public EffectWith<FXDistortion>
{
public:
    DistortionEffect(const FXDistortion& wanted, const PcmLayout& pcmLayout);

    void Reset() override;

private:
    void Apply(std::span<float> pcm) override;

    float gain;
    float bend; ///< k.
    Biquad lowPass;
    Biquad bandPass;
};

} // namespace Quon
