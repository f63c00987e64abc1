#include "harmonet/voices/SoundReason.h"

namespace Quon
{

const char* DescribeReason(SoundReason reason)
{
    switch (reason) {
    case SoundReason::None:
        return "no decision has been made yet";
    case SoundReason::Won:
        return "it has a channel";
    case SoundReason::Protected:
        return "it keeps its channel, which it has had for less than 200 ms";
    case SoundReason::LostByPriority:
        return "all channels went to sounds of a higher priority";
    case SoundReason::LostByDistance:
        return "all channels went to sounds that are nearer";
    case SoundReason::LostAsDuplicate:
        return "duplicates of it are nearer";
    case SoundReason::BeyondReach:
        return "the listener is outside its audible range";
    case SoundReason::NoListener:
        return "no microphone is active";
    case SoundReason::Paused:
        return "it is paused";
    case SoundReason::Delayed:
        return "its delay has not elapsed";
    case SoundReason::Settling:
        return "it has lost its channel, or has started, less than 200 ms ago";
    case SoundReason::TooShort:
        return "it had no channel, and too little was left to continue as a virtual sound";
    case SoundReason::NotEmulated:
        return "it had no channel, and was started with StartNoEmulation";
    case SoundReason::Refused:
        return "its file could not be opened, or the driver refused a channel";
    }
    return "unknown";
}

} // namespace Quon
