#pragma once

#include "drivers/openal/effects/Effect.h"
#include "drivers/openal/effects/SweptDelay.h"
#include "harmonet/definitions/FXRecords.h"

namespace Quon
{

/// An effect that is a swept delay and nothing else: the two below, which differ in their records, that is in
/// how late their copies can be.
template<class Record>
class SweptEffect : public EffectWith<Record>
{
public:
    /// `held` is held to the ranges of its parameters.
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

/// Doubles the sound with a copy that is late by up to 20 ms, the sweep of which detunes it.
class ChorusEffect final : public SweptEffect<FXChorus>
{
public:
    ChorusEffect(const FXChorus& wanted, const PcmLayout& pcmLayout);
};

/// Mixes the sound with a copy that is late by up to 4 ms: a comb of notches that sweeps through the
/// spectrum.
class FlangerEffect final : public SweptEffect<FXFlanger>
{
public:
    FlangerEffect(const FXFlanger& wanted, const PcmLayout& pcmLayout);
};

} // namespace Quon
