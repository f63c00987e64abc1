#pragma once

#include <cstdint>

namespace Quon
{

/// The flags of a sound instance; all other bits of the word stay 0.
enum SndFlags : std::uint32_t
{
    Flag3D = 0x00000001, ///< Positional.
    FlagFadeIn = 0x00000002, ///< Each new channel begins with a fade-in.
    FlagFadeOut = 0x00000004, ///< FadeOut() has been called.
    FlagMusic = 0x00000008, ///< Music; the parent is a `Music`, and no SoundObserver is notified.
    FlagLooping = 0x00000010, ///< Repeats from its start without end. Never cleared.
    FlagNotMovable = 0x00000020, ///< The channel gets the position once, at the start.
    FlagNoEmulation = 0x00000040, ///< Ends instead of becoming virtual.
    FlagImmediately = 0x00000080, ///< Requests a channel at once, not at the next update.
    FlagDistLTMax = 0x00000100, ///< Inside its audible range.
    FlagDistGTMax = 0x00000200, ///< Beyond its audible range. With neither flag: in the band between.
    FlagQueued = 0x00000400, ///< Files may be appended while it plays. Excludes looping.
    FlagPolyline = 0x00000800, ///< The head of a sound along a line.
    FlagSharedFXList = 0x00001000, ///< The effect list belongs to another instance.
    FlagChgFrequency = 0x00002000, ///< The rate can change while it plays.
    FlagDisableMicFX = 0x00004000, ///< The listener's effects do not apply.
    FlagCompete = 0x00008000, ///< With FlagImmediately: competes at the next update if there is no channel.
    FlagPaused = 0x08000000, ///< Paused by the game itself, not by its group or PauseAll().
    FlagPolylineSource = 0x10000000, ///< A source of a sound along a line.
    FlagInPause = 0x20000000, ///< Excluded from all updates until released.
    FlagPlaying = 0x40000000 ///< Has started.
};

} // namespace Quon
