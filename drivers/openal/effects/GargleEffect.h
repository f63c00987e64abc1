#pragma once

#include "drivers/openal/effects/Effect.h"
#include "drivers/openal/effects/Oscillator.h"
#include "harmonet/definitions/FXRecords.h"

namespace Quon
{

/// Modulates the level between silence and full level, many times a second, with a triangle that begins at
/// silence or a square that begins at full level. The rate is at most half the sampling rate.
class GargleEffect final : public EffectWith<FXGargle>
{
public:
    GargleEffect(const FXGargle& wanted, const PcmLayout& pcmLayout);

    void Reset() override { oscillator.Reset(); }
    /// It does not delay the sound itself, but can mute the output of other effects for up to a period.
    int GetReach() const override { return layout.rateHz / parameters.rateHz; }

private:
    void Apply(std::span<float> pcm) override;
    float GetGain() const;

    Oscillator oscillator;
};

} // namespace Quon
