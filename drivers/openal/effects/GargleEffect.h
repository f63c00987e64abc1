#pragma once

#include "drivers/openal/effects/Effect.h"
#include "drivers/openal/effects/Oscillator.h"
#include "harmonet/definitions/FXRecords.h"

namespace Quon
{

/// Turns the sound up and down between full level and silence, many times a second, along a triangle that
/// begins at silence or a square that begins at full level. The rate is at most half of the sampling rate.
class GargleEffect final : public EffectWith<FXGargle>
{
public:
    GargleEffect(const FXGargle& wanted, const PcmLayout& pcmLayout);

    void Reset() override { oscillator.Reset(); }
    /// It does not hold a sound back itself, but hides for up to a period what another effect still gives.
    int GetReach() const override { return layout.rateHz / parameters.rateHz; }

private:
    void Apply(std::span<float> pcm) override;
    float GetGain() const;

    Oscillator oscillator;
};

} // namespace Quon
