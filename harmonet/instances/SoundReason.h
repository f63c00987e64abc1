#pragma once

#include "harmonet/Export.h"

#include <cstdint>

namespace Quon
{

/// Why a sound is audible or not, as last decided by the kernel.
enum class SoundReason : std::uint8_t
{
    None, ///< Nothing has been decided yet. The head of a sound along a line stays here.
    Won, ///< It has a channel: there was room for all, or it was among the most important.
    Protected, ///< It keeps its channel because it has had it for less than 200 ms.
    LostByPriority, ///< All channels went to sounds of a higher priority, or to sounds that keep theirs.
    LostByDistance, ///< All channels went to sounds that are as important and nearer.
    LostAsDuplicate, ///< It would have won, but like sounds are nearer.
    BeyondReach, ///< The listener is outside its audible range.
    NoListener, ///< It is positional, and no microphone is active.
    Paused, ///< It is paused.
    Delayed, ///< Its delay is not over.
    Settling, ///< It has lost its channel, or has started, less than 200 ms ago.
    TooShort, ///< It ended: it had no channel, and too little was left to continue as a virtual sound.
    NotEmulated, ///< It ended: it had no channel, and was started with StartNoEmulation.
    Refused ///< It ended: its file could not be opened, or the driver refused a channel.
};

/// Returns a description such as "like sounds are nearer"; never null.
HARMONET_API const char* DescribeReason(SoundReason reason);

} // namespace Quon
