#pragma once

#include <cstdint>

namespace Quon
{

/// How long sounds wait between the moment at which the game asks for them and the one at which they are
/// heard, so that it is the same for all and rhythm is kept. Owned by the driver; task thread.
///
/// The library takes sounds in at full updates, which are 40 ms or more apart, so that without this a sound
/// would be heard at the update after it was asked for. The latency is the longest usual time between two
/// updates: a sound is heard as long after an update as it was asked for after the update before. It rises as
/// soon as updates are farther apart, a single long one excepted, and falls when they have been closer
/// together for 2 s.
class StartTimes
{
public:
    /// An update begins, so long after the last one.
    void BeginUpdate(std::uint32_t elapsedMs);
    void EndUpdate() { isUpdating = false; }

    /// How long after now, in game time, a sound is to be heard that was asked for so long after the last
    /// update; during an update, so long after the one before. In microseconds, not negative.
    std::int64_t GetDelay(std::int64_t askedMicroseconds) const;

    /// From a moment at which the game asks to the one at which the sound is heard, in microseconds. 0
    /// outside an update: sounds that are started there begin at once.
    std::int64_t GetLatency() const { return isUpdating ? latencyMs * microsecondsPerMs : 0; }

private:
    static constexpr std::int64_t microsecondsPerMs = 1000;

    bool isUpdating = false;
    std::int64_t elapsed = 0; ///< Between the two last updates.
    std::int64_t latencyMs = 0;
    std::int64_t longest = 0; ///< Since the latency was last looked at,
    std::int64_t watchedMs = 0; ///< and how long that is.
};

} // namespace Quon
