#pragma once

#include "harmonet/engine/PString.h"
#include "harmonet/engine/Vector.h"
#include "harmonet/instances/SoundReason.h"

#include <cstdint>

namespace Quon
{

/// What plays.
enum class SoundKind : std::uint8_t
{
    NonPositional,
    Positional,
    Line, ///< Along a line, as the game knows it. It is heard through its sources.
    LineSource, ///< One of the sources of a line. The game has no id of it.
    Music
};

/// How far a sound has got.
enum class SoundPhase : std::uint8_t
{
    Prepared, ///< Not started.
    Waiting, ///< Started, and not yet dealt with by a full update, or delayed.
    Heard, ///< It has a channel.
    Virtual ///< It runs without a channel.
};

/// A snapshot of one sound for tools: see Sound::GetState() and SoundSystem::Inspect().
///
/// What the kernel decides, and what it measures for that (distance, place, multiplier), is as of the last
/// full update; gain, position and channel are as of the call. Times are milliseconds of the sound system's
/// clock, which moves with each full update.
struct SoundState
{
    int id = 0; ///< 0 for no sound.
    SoundKind kind = SoundKind::NonPositional; ///< What kind of sound.
    SoundPhase phase = SoundPhase::Prepared; ///< How far it has got.
    SoundReason reason = SoundReason::None; ///< DescribeReason() has the words.
    bool hasChannel = false; ///< For a line: one of its sources has.
    bool isFadingOut = false; ///< It ends when the fade has ended.
    bool isLooping = false; ///< It has no end.
    bool isCutOut = false; ///< Not audible beyond `maxDistance`.
    PString definition; ///< Name of the resource; empty for a plain file and for memory.
    PString fileName; ///< Empty for memory.
    int priority = 0; ///< Greater is more important.
    int delayMs = 0; ///< Still to wait before it may start.
    float distance = 0.0F; ///< To the listener, in world units; 0 for what is not positional.
    float maxDistance = 0.0F; ///< World units; 0 for what is not positional.
    float multiplier = 1.0F; ///< By which the distance counts more where like sounds are nearer.
    /// What goes to the channel, or would go: the gains of the sound, its group and its kind, multiplied. The
    /// driver applies attenuation, cones, fades and the main gain to that.
    float gain = 0.0F;
    Vector3 place{0.0F, 0.0F, 0.0F}; ///< In the world. For a line that of its nearest source.
    std::uint32_t positionMs = 0; ///< Already played.
    std::uint32_t lengthMs = 0; ///< 0xFFFFFFFF until the file has been opened.
    std::uint32_t ageMs = 0; ///< Since the start; 0 before it.
    std::uint32_t reasonAgeMs = 0; ///< Since the reason was given.
};

} // namespace Quon
