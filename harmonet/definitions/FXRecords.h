#pragma once

#include <cstdint>

namespace Quon
{

/// The effects of a sound. The value is also the effect's bit number in the mask of
/// SoundSystem::EnableResourceFX() and its index in the table of defaults.
enum SndFX : std::uint32_t
{
    SndFXEnvReverb = 0,
    SndFXChorus = 1,
    SndFXFlanger = 2,
    SndFXEcho = 3,
    SndFXDistortion = 4,
    SndFXCompressor = 5,
    SndFXParamEq = 6,
    SndFXGargle = 7,
    SndFXWavesReverb = 8,
    /// The source side of an environmental reverb. It has no bit in the mask and cannot be used in
    /// definitions.
    SndFXEnvReverbSource = 9
};

/// Number of effects that definitions can use and the mask can disable: SndFXEnvReverb to SndFXWavesReverb.
inline constexpr unsigned int numResourceFX = 9;

// The records are plain structures of 32-bit fields, laid out like the DirectX 8 effect parameter structures
// named with them and in the same units. The library stores and copies them without reading any field; the
// handling of values out of range is up to the driver. The range of each field is in the table of
// GetEffectKeywords(), from which the check of definitions and the clamps of the drivers take it.

/// DSFXChorus.
struct FXChorus
{
    float wetDryMix; ///< Percent wet.
    float depth; ///< Percent.
    float feedback; ///< Percent. Can be negative.
    float frequency; ///< Hz of the low-frequency oscillator.
    std::int32_t waveform; ///< 0 triangle, 1 sine.
    float delay; ///< Milliseconds.
    std::int32_t phase; ///< 0 to 4 for -180, -90, 0, 90 and 180 degrees.
};

/// DSFXFlanger.
struct FXFlanger
{
    float wetDryMix; ///< Percent wet.
    float depth; ///< Percent.
    float feedback; ///< Percent. Can be negative.
    float frequency; ///< Hz of the low-frequency oscillator.
    std::int32_t waveform; ///< 0 triangle, 1 sine.
    float delay; ///< Milliseconds.
    std::int32_t phase; ///< 0 to 4 for -180, -90, 0, 90 and 180 degrees.
};

/// DSFXEcho.
struct FXEcho
{
    float wetDryMix; ///< Percent wet.
    float feedback; ///< Percent.
    float leftDelay; ///< Milliseconds.
    float rightDelay; ///< Milliseconds.
    std::int32_t panDelay; ///< 0 or 1: swap the channels on each echo.
};

/// DSFXDistortion.
struct FXDistortion
{
    float gain; ///< Decibels.
    float edge; ///< Percent.
    float postEQCenterFrequency; ///< Hz.
    float postEQBandwidth; ///< Hz.
    float preLowpassCutoff; ///< Hz.
};

/// DSFXCompressor.
struct FXCompressor
{
    float gain; ///< Decibels.
    float attack; ///< Milliseconds.
    float release; ///< Milliseconds.
    float threshold; ///< Decibels.
    float ratio; ///< Ratio to 1.
    float predelay; ///< Milliseconds.
};

/// DSFXParamEq.
struct FXParamEq
{
    float center; ///< Hz.
    float bandwidth; ///< Semitones.
    float gain; ///< Decibels.
};

/// DSFXGargle.
struct FXGargle
{
    std::int32_t rateHz; ///< Hz.
    std::int32_t waveShape; ///< 0 triangle, 1 square.
};

/// DSFXWavesReverb.
struct FXWavesReverb
{
    float inGain; ///< Decibels.
    float reverbMix; ///< Decibels.
    float reverbTime; ///< Milliseconds.
    float highFreqRTRatio; ///< Ratio.
};

/// DSFXI3DL2Reverb: the acoustics of a room.
struct FXEnvReverb
{
    std::int32_t room; ///< Hundredths of a decibel.
    std::int32_t roomHF; ///< Hundredths of a decibel.
    float roomRolloffFactor; ///< Factor.
    float decayTime; ///< Seconds.
    float decayHFRatio; ///< Ratio.
    std::int32_t reflections; ///< Hundredths of a decibel.
    float reflectionsDelay; ///< Seconds.
    std::int32_t reverb; ///< Hundredths of a decibel.
    float reverbDelay; ///< Seconds.
    float diffusion; ///< Percent.
    float density; ///< Percent.
    float hfReference; ///< Hz.
};

/// The I3DL2 source properties. The library passes the nine words on without reading them; the names tell a
/// driver how to interpret them.
struct FXEnvReverbSourceProperties
{
    std::int32_t direct; ///< Hundredths of a decibel, on the direct path.
    std::int32_t directHF; ///< Hundredths of a decibel, on the direct path's high frequencies.
    std::int32_t room; ///< Hundredths of a decibel, on the path into the room.
    std::int32_t roomHF; ///< Hundredths of a decibel, on that path's high frequencies.
    float roomRolloffFactor; ///< Factor.
    std::int32_t obstructionHF; ///< Hundredths of a decibel: an obstacle in the same room.
    float obstructionLFRatio; ///< Part of it that low frequencies suffer, 0.0 to 1.0.
    std::int32_t occlusionHF; ///< Hundredths of a decibel: the source is in another room.
    float occlusionLFRatio; ///< Part of it that low frequencies suffer, 0.0 to 1.0.
};

static_assert(sizeof(FXChorus) == 28 && sizeof(FXFlanger) == 28 && sizeof(FXEcho) == 20);
static_assert(sizeof(FXDistortion) == 20 && sizeof(FXCompressor) == 24 && sizeof(FXParamEq) == 12);
static_assert(sizeof(FXGargle) == 8 && sizeof(FXWavesReverb) == 16 && sizeof(FXEnvReverb) == 48);
static_assert(sizeof(FXEnvReverbSourceProperties) == 36);

} // namespace Quon
