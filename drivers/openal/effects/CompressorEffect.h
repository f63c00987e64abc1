#pragma once

#include "drivers/openal/effects/DelayLine.h"
#include "drivers/openal/effects/Effect.h"
#include "harmonet/definitions/FXRecords.h"

namespace Quon
{

/// Lowers what is above the threshold: there the level grows by 1 dB where the sound grows by `ratio` dB.
///
/// The level is followed on the louder of both sides, so that the sound does not wander. It rises with the
/// time constant `attack` and falls with `release`; after one of these times 63 percent of a step are taken.
/// What the level does is heard `predelay` later, the sound itself is never late.
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
    float slope; ///< Of the gain over the level above the threshold, both in decibels: -1 to 0.
    float rise; ///< The part of a step upwards that one sample frame takes,
    float fall; ///< and downwards.
    int predelay; ///< In sample frames.
    DelayLine peaks;
    float level = 0.0F;
};

} // namespace Quon
