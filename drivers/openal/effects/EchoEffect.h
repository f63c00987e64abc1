#pragma once

#include "drivers/openal/effects/DelayLine.h"
#include "drivers/openal/effects/Effect.h"
#include "harmonet/definitions/FXRecords.h"

#include <array>

namespace Quon
{

/// Repeats the sound, attenuated by the feedback each time, with a separate delay for each side.
///
/// The first echo stays on its side. With `panDelay` each further one comes from the other side, after that
/// side's delay. A mono sound uses the left delay only. At a feedback of 100 percent echoes do not decay.
class EchoEffect final : public EffectWith<FXEcho>
{
public:
    EchoEffect(const FXEcho& wanted, const PcmLayout& pcmLayout);

    void Reset() override;
    int GetReach() const override;

private:
    void Apply(std::span<float> pcm) override;
    void ApplyMono(std::span<float> pcm);
    void ApplyStereo(std::span<float> pcm);

    float wetPart;
    float feedback;
    std::array<int, maxChannels> delays; ///< In sample frames.
    std::array<DelayLine, maxChannels> lines;
};

} // namespace Quon
