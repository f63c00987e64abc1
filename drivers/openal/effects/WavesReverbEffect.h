#pragma once

#include "drivers/openal/effects/AllPass.h"
#include "drivers/openal/effects/Effect.h"
#include "drivers/openal/effects/FeedbackNetwork.h"
#include "harmonet/definitions/FXRecords.h"

#include <array>

namespace Quon
{

/// Adds the reverberation of a room to the sound.
///
/// `reverbMix` is the level of the room; the direct sound has the remaining power, so that 0 dB is the room
/// alone, -3 dB equal parts, and the total level is about unchanged. `reverbTime` is the time in which the
/// room decays by 60 dB, up to about 2 kHz. Far above 4 kHz, or above a third of the rate if that is lower,
/// it is `highFreqRTRatio` of that time. Ratios that imply a loss of more than 24 dB per reflection sound
/// alike.
class WavesReverbEffect final : public EffectWith<FXWavesReverb>
{
public:
    WavesReverbEffect(const FXWavesReverb& wanted, const PcmLayout& pcmLayout);

    void Reset() override;
    int GetReach() const override;

private:
    /// Diffuses the input of the room, so that a click does not become separate echoes.
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
