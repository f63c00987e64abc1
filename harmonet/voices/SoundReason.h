#pragma once

#include "harmonet/Export.h"

#include <cstdint>

namespace Quon
{

/// Why a sound is audible or not, as last decided by the kernel.
enum class SoundReason : std::uint8_t
{
    None, ///< No decision has been made yet. The head of a sound along a line keeps this reason.
    Won, ///< It has a channel: there was room for all, or it was among the most important.
    Protected, ///< It keeps its channel because it has had it for less than 200 ms.
    LostByPriority, ///< All channels went to sounds of a higher priority, or to sounds that keep theirs.
    LostByDistance, ///< All channels went to sounds that are as important and nearer.
    LostAsDuplicate, ///< It would have won, but duplicates of it are nearer.
    BeyondReach, ///< The listener is outside its audible range.
    NoListener, ///< It is positional, and no microphone is active.
    Paused, ///< It is paused.
    Delayed, ///< Its delay has not elapsed.
    Settling, ///< It has lost its channel, or has started, less than 200 ms ago.
    TooShort, ///< It ended: it had no channel, and too little was left to continue as a virtual sound.
    NotEmulated, ///< It ended: it had no channel, and was started with StartNoEmulation.
    Refused ///< It ended: its file could not be opened, or the driver refused a channel.
};

/// Returns a description such as "duplicates of it are nearer"; never null.
HARMONET_API const char* DescribeReason(SoundReason reason);

} // namespace Quon
