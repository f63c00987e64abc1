#pragma once

#include "drivers/openal/effects/DelayLine.h"
#include "drivers/openal/effects/Effect.h"
#include "harmonet/definitions/FXRecords.h"

#include <array>

namespace Quon
{

/// Repeats the sound again and again, each time weaker by the feedback, on either side with a delay of its
/// own.
///
/// The first echo stays on its side. With `panDelay` each further one comes from the other side, after that
/// side's delay. A sound of one channel has the left delay alone. At a feedback of 100 percent echoes do not
/// die away.
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
