#include "drivers/openal/effects/WavesReverbEffect.h"

#include "drivers/openal/effects/Defaults.h"
#include "drivers/openal/effects/Units.h"

#include <algorithm>
#include <cmath>

namespace Quon
{

namespace
{

/// A short decay implies a small room; in a large one it would end before the first echo.
double GetSize(const FXWavesReverb& parameters)
{
    constexpr double hallDecayMs = 1000.0;
    return std::clamp(parameters.reverbTime / hallDecayMs, 0.1, 1.2);
}

FeedbackNetwork::Room GetRoom(const FXWavesReverb& parameters)
{
    return {parameters.reverbTime, parameters.highFreqRTRatio, GetSize(parameters)};
}

/// The gain that gives the direct sound the power not used by the room, multiplied by the input gain.
float GetDryGain(const FXWavesReverb& parameters)
{
    const float mix = ToFactor(parameters.reverbMix);
    return ToFactor(parameters.inGain) * std::sqrt(1.0F - mix * mix);
}

/// An even number: whole sample frames for both mono and stereo.
constexpr std::size_t pieceSamples = 256;

AllPass MakeScatter(double ms, const FXWavesReverb& parameters, int rateHz)
{
    return AllPass(std::max(static_cast<int>(ToSampleFrames(ms * GetSize(parameters), rateHz)), 1));
}

} // namespace

WavesReverbEffect::Diffuser::Diffuser(const FXWavesReverb& parameters, int rateHz)
    : coarse(MakeScatter(4.77, parameters, rateHz))
    , fine(MakeScatter(1.73, parameters, rateHz))
{
}

WavesReverbEffect::WavesReverbEffect(const FXWavesReverb& wanted, const PcmLayout& pcmLayout)
    : EffectWith(ClampToRanges(SndFXWavesReverb, wanted), pcmLayout)
    , dryGain(GetDryGain(parameters))
    , wetGain(ToFactor(parameters.inGain + parameters.reverbMix))
    , diffusers{Diffuser(parameters, layout.rateHz), Diffuser(parameters, layout.rateHz)}
    , network(GetRoom(parameters), layout.rateHz)
{
}

void WavesReverbEffect::Apply(std::span<float> pcm)
{
    std::array<float, pieceSamples> piece;
    while (!pcm.empty()) {
        const std::span<float> dry = pcm.first(std::min(pcm.size(), pieceSamples));
        const std::span<float> wet(piece.data(), dry.size());
        Diffuse(dry, wet);
        if (layout.channels == 1) {
            network.ProcessMono(wet);
        }
        else {
            network.ProcessStereo(wet);
        }
        for (std::size_t i = 0; i < dry.size(); ++i) {
            dry[i] = dryGain * dry[i] + wetGain * wet[i];
        }
        pcm = pcm.subspan(dry.size());
    }
}

void WavesReverbEffect::Diffuse(std::span<const float> dry, std::span<float> scattered)
{
    const auto channels = static_cast<std::size_t>(layout.channels);
    for (std::size_t i = 0; i < dry.size(); i += channels) {
        for (std::size_t channel = 0; channel < channels; ++channel) {
            scattered[i + channel] = diffusers[channel].Filter(dry[i + channel]);
        }
    }
}

void WavesReverbEffect::Reset()
{
    for (Diffuser& diffuser : diffusers) {
        diffuser.Clear();
    }
    network.Clear();
}

int WavesReverbEffect::GetReach() const
{
    return network.GetLongest() + diffusers[0].GetDelay();
}

} // namespace Quon
