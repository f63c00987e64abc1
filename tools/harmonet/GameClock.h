#pragma once

#include <chrono>

namespace Tool
{

/// Gives the length of each game frame, in whole milliseconds of which none is lost. Live it waits until a
/// frame has passed; otherwise the time is turned by hand and every frame has the same length.
class GameClock
{
public:
    explicit GameClock(bool newIsLive);

    /// Milliseconds since the last call, or since the clock was made. Of `remainingMs`, the time up to a
    /// wanted end, a frame turned by hand takes all where the next one would be shorter than a whole frame.
    int WaitForFrame(long remainingMs);

private:
    using Clock = std::chrono::steady_clock;

    bool isLive;
    Clock::time_point now;
};

} // namespace Tool
