#pragma once

#include "drivers/openal/effects/Effect.h"
#include "drivers/openal/effects/SweptDelay.h"
#include "harmonet/definitions/FXRecords.h"

namespace Quon
{

/// Doubles the sound with a copy that is late by up to 20 ms, the sweep of which detunes it.
class ChorusEffect final : public EffectWith<FXChorus>
{
public:
    ChorusEffect(const FXChorus& wanted, const PcmLayout& pcmLayout);

    void Reset() override { delay.Reset(); }
    int GetReach() const override { return delay.GetLongest(); }

private:
    void Apply(std::span<float> pcm) override { delay.Process(pcm); }

    SweptDelay delay;
};

} // namespace Quon
