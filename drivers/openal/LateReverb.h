#pragma once

#include "drivers/openal/SoftVersion.h"
#include "harmonet/definitions/FXRecords.h"

namespace Quon
{

/// The parameters of OpenAL's reverb that determine the level and the decay of a room. Gains are linear.
struct ReverbParameters
{
    float gain; ///< Of the room, at most 1.
    float reflectionsGain;
    float lateGain; ///< At most 10.
    float decayTime; ///< In seconds.
    float decayHFRatio;
};

/// Returns the parameters with which OpenAL renders a room, which must have been clamped, with the levels and
/// the decay time of its record. A pure function.
///
/// *Level.* OpenAL Soft 1.19 takes the late reverb's output after the loss in its feedback lines, so short
/// decays are quieter: by 16 dB at 0.4 s. The lines get shorter with the density. High frequencies that decay
/// fast take some of the others with them, and the level rises when they decay fast in a long reverb. The
/// compensation was measured with white noise in the octave around 500 Hz, rendered at 44.1 kHz with decay
/// times of 0.17 to 20 s, ratios of 0.1 to 1.5 and densities of 0 to 100 %, without reflections. Levels are
/// relative to a decay time of 1.49 s, a ratio of 0.83 and a density of 100 %. Where OpenAL's range of 20 dB
/// is too small, the room's gain is raised and its reflections are lowered by as much, up to a gain of 1.
/// Newer versions have the same level at any decay time and density, but for the ratio (measured with 1.24).
///
/// *Decay.* Between 0.3 and 1 s OpenAL Soft decays up to 17 % more slowly than set, since its lines are about
/// as long; the decay time is shortened by as much. A decay of less than 0.24 s is not possible. In 1.19 high
/// frequencies cannot decay so much faster than the others that the reciprocal times, in seconds, differ by
/// 7.92 or more: its filter would have to close, and it terminates the process. This raises the ratio of
/// three of the presets. Their level is not compensated: a click in them decays as fast as the reflections,
/// and would decay up to 2.5 times as slowly with a louder late reverb.
ReverbParameters GetReverbParameters(const FXEnvReverb& room, SoftVersion version);

} // namespace Quon
