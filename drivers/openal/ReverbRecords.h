#pragma once

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
