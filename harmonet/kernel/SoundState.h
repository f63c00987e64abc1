#pragma once

#include "harmonet/engine/PString.h"
#include "harmonet/engine/Vector.h"
#include "harmonet/voices/SoundReason.h"

#include <cstdint>

namespace Quon
{

/// The kind of a sound.
enum class SoundKind : std::uint8_t
{
    NonPositional,
    Positional,
    Line, ///< The head of a sound along a line, whose id the game has. It plays through its sources.
    LineSource, ///< One of the sources of a line. The game does not have its id.
    Music
};

/// The phase of a sound.
enum class SoundPhase : std::uint8_t
{
    Prepared, ///< Not started.
    Waiting, ///< Started, but delayed or not yet handled by a full update.
    Heard, ///< It has a channel.
    Virtual ///< It runs without a channel.
};

/// A snapshot of one sound for tools: see Sound::GetState() and SoundSystem::Inspect().
///
/// The kernel's decisions and the measures they are based on (distance, place, multiplier) are as of the last
/// full update; gain, playback position and channel are as of the call. Times are milliseconds on the sound
/// system's clock, which advances in each full update.
struct SoundState
{
    int id = 0; ///< 0 for no sound.
    SoundKind kind = SoundKind::NonPositional; ///< What kind of sound.
    SoundPhase phase = SoundPhase::Prepared; ///< How far it has got.
    SoundReason reason = SoundReason::None; ///< DescribeReason() returns it as text.
    bool hasChannel = false; ///< For a line: whether one of its sources has one.
    bool isFadingOut = false; ///< It ends when the fade has ended.
    bool isLooping = false; ///< It has no end.
    bool isCutOut = false; ///< Not audible beyond `maxDistance`.
    PString definition; ///< Name of the resource; empty for a plain file and for memory.
    PString fileName; ///< Empty for memory.
    int priority = 0; ///< Greater is more important.
    int delayMs = 0; ///< Time left before it may start.
    float distance = 0.0F; ///< To the listener, in world units; 0 for non-positional sounds.
    float maxDistance = 0.0F; ///< World units; 0 for non-positional sounds.
    float multiplier = 1.0F; ///< Factor on the distance that counts where like sounds are nearer.
    /// The gain sent to the channel, or that would be: the product of the gains of the sound, its group and
    /// its kind. The driver also applies attenuation, cones, fades and the main gain.
    float gain = 0.0F;
    Vector3 place{0.0F, 0.0F, 0.0F}; ///< World position. For a line, that of its nearest source.
    std::uint32_t positionMs = 0; ///< Already played.
    std::uint32_t lengthMs = 0; ///< 0xFFFFFFFF until the file has been opened.
    std::uint32_t ageMs = 0; ///< Since the start; 0 before it.
    std::uint32_t reasonAgeMs = 0; ///< Since the reason was set.
};

} // namespace Quon
