#include "harmonet/definitions/EffectKeywords.h"

#include "harmonet/kernel/HarmonetStrings.h"

#include <algorithm>
#include <cassert>

namespace Quon
{

namespace
{

using Keys = HarmonetStrings;

enum Kind : bool
{
    Float = false,
    Int = true
};

// The ranges are those of the corresponding DirectX 8 effects.

constexpr EffectField envReverbFields[] = {
    {Keys::room, offsetof(FXEnvReverb, room), Int, -10000, 0},
    {Keys::roomhf, offsetof(FXEnvReverb, roomHF), Int, -10000, 0},
    {Keys::roomrolloff, offsetof(FXEnvReverb, roomRolloffFactor), Float, 0, 10},
    {Keys::decaytime, offsetof(FXEnvReverb, decayTime), Float, 0.1, 20},
    {Keys::decayhfratio, offsetof(FXEnvReverb, decayHFRatio), Float, 0.1, 2},
    {Keys::reflections, offsetof(FXEnvReverb, reflections), Int, -10000, 1000},
    {Keys::reflectionsdelay, offsetof(FXEnvReverb, reflectionsDelay), Float, 0, 0.3},
    {Keys::reverb, offsetof(FXEnvReverb, reverb), Int, -10000, 2000},
    {Keys::reverbdelay, offsetof(FXEnvReverb, reverbDelay), Float, 0, 0.1},
    {Keys::diffusion, offsetof(FXEnvReverb, diffusion), Float, 0, 100},
    {Keys::density, offsetof(FXEnvReverb, density), Float, 0, 100},
    {Keys::hfreference, offsetof(FXEnvReverb, hfReference), Float, 20, 20000},
};

constexpr EffectField chorusFields[] = {
    {Keys::wetdrymix, offsetof(FXChorus, wetDryMix), Float, 0, 100},
    {Keys::depth, offsetof(FXChorus, depth), Float, 0, 100},
    {Keys::feedback, offsetof(FXChorus, feedback), Float, -99, 99},
    {Keys::frequency, offsetof(FXChorus, frequency), Float, 0, 10},
    {Keys::waveform, offsetof(FXChorus, waveform), Int, 0, 1},
    {Keys::delay, offsetof(FXChorus, delay), Float, 0, 20},
    {Keys::phase, offsetof(FXChorus, phase), Int, 0, 4},
};

constexpr EffectField flangerFields[] = {
    {Keys::wetdrymix, offsetof(FXFlanger, wetDryMix), Float, 0, 100},
    {Keys::depth, offsetof(FXFlanger, depth), Float, 0, 100},
    {Keys::feedback, offsetof(FXFlanger, feedback), Float, -99, 99},
    {Keys::frequency, offsetof(FXFlanger, frequency), Float, 0, 10},
    {Keys::waveform, offsetof(FXFlanger, waveform), Int, 0, 1},
    {Keys::delay, offsetof(FXFlanger, delay), Float, 0, 4},
    {Keys::phase, offsetof(FXFlanger, phase), Int, 0, 4},
};

constexpr EffectField echoFields[] = {
    {Keys::wetdrymix, offsetof(FXEcho, wetDryMix), Float, 0, 100},
    {Keys::feedback, offsetof(FXEcho, feedback), Float, 0, 100},
    {Keys::leftdelay, offsetof(FXEcho, leftDelay), Float, 1, 2000},
    {Keys::rightdelay, offsetof(FXEcho, rightDelay), Float, 1, 2000},
    {Keys::pandelay, offsetof(FXEcho, panDelay), Int, 0, 1},
};

constexpr EffectField distortionFields[] = {
    {Keys::gain, offsetof(FXDistortion, gain), Float, -60, 0},
    {Keys::edge, offsetof(FXDistortion, edge), Float, 0, 100},
    {Keys::posteqcenterfreq, offsetof(FXDistortion, postEQCenterFrequency), Float, 100, 8000},
    {Keys::posteqbandwidth, offsetof(FXDistortion, postEQBandwidth), Float, 100, 8000},
    {Keys::prelowpasscutoff, offsetof(FXDistortion, preLowpassCutoff), Float, 100, 8000},
};

constexpr EffectField compressorFields[] = {
    {Keys::gain, offsetof(FXCompressor, gain), Float, -60, 60},
    {Keys::attack, offsetof(FXCompressor, attack), Float, 0.01, 500},
    {Keys::release, offsetof(FXCompressor, release), Float, 50, 3000},
    {Keys::threshold, offsetof(FXCompressor, threshold), Float, -60, 0},
    {Keys::ratio, offsetof(FXCompressor, ratio), Float, 1, 100},
    {Keys::delay, offsetof(FXCompressor, predelay), Float, 0, 4},
};

constexpr EffectField paramEqFields[] = {
    {Keys::center, offsetof(FXParamEq, center), Float, 80, 16000},
    {Keys::bandwidth, offsetof(FXParamEq, bandwidth), Float, 1, 36},
    {Keys::gain, offsetof(FXParamEq, gain), Float, -15, 15},
};

constexpr EffectField gargleFields[] = {
    {Keys::ratehz, offsetof(FXGargle, rateHz), Int, 1, 1000},
    {Keys::waveform, offsetof(FXGargle, waveShape), Int, 0, 1},
};

constexpr EffectField wavesReverbFields[] = {
    {Keys::gain, offsetof(FXWavesReverb, inGain), Float, -96, 0},
    {Keys::reverbmix, offsetof(FXWavesReverb, reverbMix), Float, -96, 0},
    {Keys::reverbtime, offsetof(FXWavesReverb, reverbTime), Float, 0.001, 3000},
    {Keys::highfreqrtratio, offsetof(FXWavesReverb, highFreqRTRatio), Float, 0.001, 0.999},
};

// In the order of SndFX.
const EffectKeywords effects[numResourceFX] = {
    {Keys::fx_envreverb, SndFXEnvReverb, envReverbFields},
    {Keys::fx_chorus, SndFXChorus, chorusFields},
    {Keys::fx_flanger, SndFXFlanger, flangerFields},
    {Keys::fx_echo, SndFXEcho, echoFields},
    {Keys::fx_distortion, SndFXDistortion, distortionFields},
    {Keys::fx_compressor, SndFXCompressor, compressorFields},
    {Keys::fx_parameq, SndFXParamEq, paramEqFields},
    {Keys::fx_gargle, SndFXGargle, gargleFields},
    {Keys::fx_wavesreverb, SndFXWavesReverb, wavesReverbFields},
};

} // namespace

const EffectField* EffectKeywords::FindField(const PString& fieldKeyword) const
{
    const auto found = std::find_if(fields.begin(), fields.end(),
        [&](const EffectField& field) { return field.keyword == fieldKeyword; });
    return found != fields.end() ? &*found : nullptr;
}

const EffectKeywords* FindEffectKeywords(const PString& keyword)
{
    const auto found = std::find_if(std::begin(effects), std::end(effects),
        [&](const EffectKeywords& keywords) { return keywords.keyword == keyword; });
    return found != std::end(effects) ? found : nullptr;
}

const EffectKeywords& GetEffectKeywords(SndFX effect)
{
    assert(effect < numResourceFX);
    return effects[effect];
}

} // namespace Quon
