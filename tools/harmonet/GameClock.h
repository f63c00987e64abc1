#pragma once

#include <chrono>

namespace Tool
{

/// Provides the length of each game frame, in whole milliseconds; fractions carry over to the next frame. In
/// live mode it waits until the frame has passed. Otherwise the time is simulated, and every frame has the
/// same length.
class GameClock
{
public:
    explicit GameClock(bool newIsLive);

    /// Returns the milliseconds since the last call, or since construction. `remainingMs` is the time left to
    /// play. In simulated time, the last frame covers all that remains if that is less than two frames.
    int WaitForFrame(long remainingMs);

private:
    using Clock = std::chrono::steady_clock;

    bool isLive;
    Clock::time_point now;
};

} // namespace Tool
