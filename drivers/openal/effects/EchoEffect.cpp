#include "drivers/openal/effects/EchoEffect.h"

#include "drivers/openal/effects/Defaults.h"
#include "drivers/openal/effects/Units.h"

#include <cmath>

namespace Quon
{

namespace
{

int CountDelay(float ms, int rateHz)
{
    return std::max(static_cast<int>(std::lround(ToSampleFrames(ms, rateHz))), 1);
}

} // namespace

EchoEffect::EchoEffect(const FXEcho& wanted, const PcmLayout& pcmLayout)
    : EffectWith(ClampToRanges(SndFXEcho, wanted), pcmLayout)
    , wetPart(ToPart(parameters.wetDryMix))
    , feedback(ToPart(parameters.feedback))
    , delays{CountDelay(parameters.leftDelay, layout.rateHz),
          CountDelay(parameters.rightDelay, layout.rateHz)}
    , lines{DelayLine(delays[0]), DelayLine(layout.channels == 2 ? delays[1] : 1)}
{
}

void EchoEffect::Apply(std::span<float> pcm)
{
    if (layout.channels == 1) {
        ApplyMono(pcm);
    }
    else {
        ApplyStereo(pcm);
    }
}

void EchoEffect::ApplyMono(std::span<float> pcm)
{
    const auto delay = static_cast<std::size_t>(delays[0]);
    for (float& sample : pcm) {
        const float echo = lines[0].GetTap(delay);
        lines[0].Push(sample + feedback * echo);
        sample += wetPart * (echo - sample);
    }
}

void EchoEffect::ApplyStereo(std::span<float> pcm)
{
    const auto leftDelay = static_cast<std::size_t>(delays[0]);
    const auto rightDelay = static_cast<std::size_t>(delays[1]);
    const bool swaps = parameters.panDelay == 1;
    for (std::size_t i = 0; i < pcm.size(); i += 2) {
        const float left = lines[0].GetTap(leftDelay);
        const float right = lines[1].GetTap(rightDelay);
        lines[0].Push(pcm[i] + feedback * (swaps ? right : left));
        lines[1].Push(pcm[i + 1] + feedback * (swaps ? left : right));
        pcm[i] += wetPart * (left - pcm[i]);
        pcm[i + 1] += wetPart * (right - pcm[i + 1]);
    }
}

void EchoEffect::Reset()
{
    for (DelayLine& line : lines) {
        line.Clear();
    }
}

int EchoEffect::GetReach() const
{
    return layout.channels == 1 ? delays[0] : std::max(delays[0], delays[1]);
}

} // namespace Quon
