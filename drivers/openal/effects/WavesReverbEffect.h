#pragma once

#include "drivers/openal/effects/AllPass.h"
#include "drivers/openal/effects/Effect.h"
#include "drivers/openal/effects/FeedbackNetwork.h"
#include "harmonet/definitions/FXRecords.h"

#include <array>

namespace Quon
{

/// Puts the sound into a room.
///
/// `reverbMix` is the level of the room; the direct sound takes what power that leaves, so that 0 dB is the
/// room alone, -3 dB as much of either, and the whole about as loud as without. `reverbTime` is the time in
/// which the room falls by 60 dB, up to some 2 kHz. Far above 4 kHz, or above a third of the rate if that is
/// lower, it is `highFreqRTRatio` of that time. Ratios that would take more than 24 dB at one reflection
/// sound alike.
class WavesReverbEffect final : public EffectWith<FXWavesReverb>
{
public:
    WavesReverbEffect(const FXWavesReverb& wanted, const PcmLayout& pcmLayout);

    void Reset() override;
    int GetReach() const override;

private:
    /// Scatters what goes into the room, so that a click is no handful of echoes.
    class Diffuser
    {
    public:
        Diffuser(const FXWavesReverb& parameters, int rateHz);

        float Filter(float sample) { return fine.Filter(coarse.Filter(sample)); }
        int GetDelay() const { return coarse.GetDelay() + fine.GetDelay(); }
        void Clear()
        {
            coarse.Clear();
            fine.Clear();
        }

    private:
        AllPass coarse;
        AllPass fine;
    };

    void Apply(std::span<float> pcm) override;
    void Diffuse(std::span<const float> dry, std::span<float> scattered);

    float dryGain;
    float wetGain;
    std::array<Diffuser, maxChannels> diffusers;
    FeedbackNetwork network;
};

} // namespace Quon
