#pragma once

#include "drivers/openal/effects/DelayLine.h"
#include "drivers/openal/effects/Effect.h"
#include "harmonet/definitions/FXRecords.h"

namespace Quon
{

/// Reduces levels above the threshold: there the output rises by 1 dB for each `ratio` dB of input.
///
/// The level is that of the louder side, so that the stereo image does not move. It rises with the time
/// constant `attack` and falls with `release`; after one time constant 63 percent of a step are reached.
/// Changes of the level take effect `predelay` later; the sound itself is not delayed.
class CompressorEffect final : public EffectWith<FXCompressor>
{
public:
    CompressorEffect(const FXCompressor& wanted, const PcmLayout& pcmLayout);

    void Reset() override;

private:
    void Apply(std::span<float> pcm) override;
    void FollowLevel(float peak);
    void TurnIntoGains(std::span<float> above) const;

    float gain;
    float threshold;
    float slope; ///< Change of gain per level above the threshold, both in decibels: -1 to 0.
    float attackStep; ///< Smoothing coefficient per sample frame, upwards.
    float releaseStep; ///< Smoothing coefficient per sample frame, downwards.
    int predelay; ///< In sample frames.
    DelayLine peaks;
    float level = 0.0F;
};

} // namespace Quon
