#pragma once

#include "drivers/openal/effects/Effect.h"
#include "drivers/openal/effects/SweptDelay.h"
#include "harmonet/definitions/FXRecords.h"

namespace Quon
{

/// An effect that consists of a swept delay: the base of the two below, which differ in their records and
/// thus in their maximum delays.
template<class Record>
class SweptEffect : public EffectWith<Record>
{
public:
    /// `held` must have been clamped to the ranges of its parameters.
    SweptEffect(const Record& held, const PcmLayout& pcmLayout)
        : EffectWith<Record>(held, pcmLayout)
        , delay(ToSettings(held), pcmLayout)
    {
    }

    void Reset() override { delay.Reset(); }
    int GetReach() const override { return delay.GetLongest(); }

private:
    void Apply(std::span<float> pcm) override { delay.Process(pcm); }

    SweptDelay delay;
};

/// Doubles the sound with a copy delayed by up to 20 ms, which the sweep detunes.
class ChorusEffect final : public SweptEffect<FXChorus>
{
public:
    ChorusEffect(const FXChorus& wanted, const PcmLayout& pcmLayout);
};

/// Mixes the sound with a copy delayed by up to 4 ms: a comb filter that sweeps through the spectrum.
class FlangerEffect final : public SweptEffect<FXFlanger>
{
public:
    FlangerEffect(const FXFlanger& wanted, const PcmLayout& pcmLayout);
};

} // namespace Quon
