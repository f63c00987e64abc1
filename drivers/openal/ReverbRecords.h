#pragma once

#include "drivers/openal/SoftVersion.h"
#include "harmonet/definitions/FXRecords.h"

namespace Quon
{

/// What OpenAL can do of a room or of a source's place in it, and what its parameters are in OpenAL's units.
/// Pure functions. Fields that are no number count as those of a generic room, or as doing nothing.

/// The room with each field held to its range: `room` and `roomHF` from -10000 to 0, `reflections` to 1000,
/// `reverb` to 2000; a rolloff of 0 to 10; a decay of 0.1 to 20 s, its ratio of 0.1 to 2; delays of 0 to 0.3
/// and to 0.1 s; percentages of 0 to 100; a reference of 1000 to 20 000 Hz.
FXEnvReverb HoldReverb(const FXEnvReverb& wanted);

/// Whether two rooms, both held, are the same.
bool IsSame(const FXEnvReverb& one, const FXEnvReverb& other);

/// The properties with each field held to its range: levels from -10000 to 0, since OpenAL only weakens;
/// ratios of 0 to 1; a rolloff of 0 to 10.
FXEnvReverbSourceProperties HoldProperties(const FXEnvReverbSourceProperties& wanted);

/// The properties that do nothing.
inline constexpr FXEnvReverbSourceProperties plainProperties = {0, 0, 0, 0, 0.0F, 0, 0.0F, 0, 0.0F};

/// The linear factor of a level in hundredths of a decibel; -10000 and below is silence.
float ToGain(float hundredths);

/// The late reverb's gain for OpenAL, 0 to 10, at which it is as loud in steady sound as the record says, for
/// a record that has been held.
///
/// OpenAL Soft's late reverb leaves its feedback lines after their loss, so that short decays come out
/// weaker: by 16 dB at 0.4 s. What is made up for is what white noise showed in the octave around 500 Hz,
/// rendered with OpenAL Soft 1.19 at decay times of 0.1 to 20 s, a ratio at high frequencies of 0.83, no
/// reflections and densities of 60 and 100 %; the lines get shorter with the density, and the loss in dB goes
/// by its fourth root. Levels count from a decay time of 1.49 s and a density of 100 %. Newer versions have a
/// table of their own, of noise rendered with 1.24 at a density of 100 %, in dB of the same level.
float GetLateGain(const FXEnvReverb& room, SoftVersion version);

/// A low-pass filter of OpenAL: what it leaves of all, and of that at high frequencies. 1 changes nothing.
struct PathGain
{
    float gain = 1.0F;
    float gainHF = 1.0F;
};

/// What the properties leave of the direct sound, and of the sound that goes into a room. They have to have
/// been held.
PathGain GetDirectGain(const FXEnvReverbSourceProperties& properties);
PathGain GetRoomGain(const FXEnvReverbSourceProperties& properties);

} // namespace Quon
