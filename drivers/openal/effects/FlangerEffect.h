#pragma once

#include "drivers/openal/effects/Effect.h"
#include "drivers/openal/effects/SweptDelay.h"
#include "harmonet/definitions/FXRecords.h"

namespace Quon
{

/// Mixes the sound with a copy that is late by up to 4 ms: a comb of notches that sweeps through the
/// spectrum.
class FlangerEffect final : public EffectWith<FXFlanger>
{
public:
    FlangerEffect(const FXFlanger& wanted, const PcmLayout& pcmLayout);

    void Reset() override { delay.Reset(); }
    int GetReach() const override { return delay.GetLongest(); }

private:
    void Apply(std::span<float> pcm) override { delay.Process(pcm); }

    SweptDelay delay;
};

} // namespace Quon
