#pragma once

#include "drivers/openal/SoftVersion.h"
#include "harmonet/definitions/FXRecords.h"

namespace Quon
{

/// Clamps the records of rooms and sources to what OpenAL supports, and converts them to OpenAL's units. Pure
/// functions. NaN fields are replaced by those of a generic room, or by neutral values.

/// Returns the room with each field clamped to its range: `room` and `roomHF` from -10000 to 0, `reflections`
/// to 1000, `reverb` to 2000; a rolloff of 0 to 10; a decay of 0.1 to 20 s, its ratio of 0.1 to 2; delays of
/// 0 to 0.3 and to 0.1 s; percentages of 0 to 100; a reference of 1000 to 20 000 Hz.
FXEnvReverb ClampReverb(const FXEnvReverb& wanted);

/// Whether two clamped rooms are equal.
bool IsSame(const FXEnvReverb& one, const FXEnvReverb& other);

/// Returns the properties with each field clamped to its range: levels from -10000 to 0, since OpenAL only
/// attenuates; ratios of 0 to 1; a rolloff of 0 to 10.
FXEnvReverbSourceProperties ClampProperties(const FXEnvReverbSourceProperties& wanted);

/// The neutral properties.
inline constexpr FXEnvReverbSourceProperties plainProperties = {0, 0, 0, 0, 0.0F, 0, 0.0F, 0, 0.0F};

/// Converts a level in hundredths of a decibel to a linear factor; -10000 and below is silence.
float ToGain(float hundredths);

/// The late reverb's gain for OpenAL, 0 to 10, at which its level in steady sound is that of the record,
/// which must have been clamped.
///
/// OpenAL Soft takes the late reverb's output after the loss in its feedback lines, so short decays are
/// quieter: by 16 dB at 0.4 s. The compensation was measured with white noise in the octave around 500 Hz,
/// rendered with OpenAL Soft 1.19 at decay times of 0.1 to 20 s, a high-frequency ratio of 0.83, no
/// reflections and densities of 60 and 100 %; the lines get shorter with the density, and the loss in dB
/// follows its fourth root. Levels are relative to a decay time of 1.49 s and a density of 100 %. Newer
/// versions have a table of their own, of noise rendered with 1.24 at a density of 100 %, in dB of the same
/// level.
float GetLateGain(const FXEnvReverb& room, SoftVersion version);

/// An OpenAL low-pass filter: its gain, and the additional gain at high frequencies. 1 changes nothing.
struct PathGain
{
    float gain = 1.0F;
    float gainHF = 1.0F;
};

/// The filter of the direct sound, and of the sound sent to a room. The properties must have been clamped.
PathGain GetDirectGain(const FXEnvReverbSourceProperties& properties);
PathGain GetRoomGain(const FXEnvReverbSourceProperties& properties);

} // namespace Quon
