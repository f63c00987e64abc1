#pragma once

#include <cstdint>

namespace Quon
{

/// The delay between the time at which the game requests a sound and the time at which it is played. It is
/// the same for all sounds, so that rhythm is kept. Owned by the driver; task thread.
///
/// The library starts sounds in full updates, which are 40 ms or more apart, so without this a sound would
/// begin at the update after its request. The latency is the longest usual time between two updates: a sound
/// is played as long after an update as it was requested after the previous one. It rises as soon as updates
/// are farther apart, except for a single long one, and falls when they have been closer together for 2 s.
class StartTimes
{
public:
    /// Begins an update, `elapsedMs` after the last one, at a time of the machine in nanoseconds.
    void BeginUpdate(std::uint32_t elapsedMs, std::int64_t machineTime);
    void EndUpdate() { isUpdating = false; }

    /// The time from now, in game time, until a sound is to be played that was requested `askedMicroseconds`
    /// after the last update, or, during an update, after the previous one. In microseconds, not negative.
    std::int64_t GetDelay(std::int64_t askedMicroseconds) const;

    /// The time from a request to playback, in microseconds. 0 outside an update: sounds started there begin
    /// at once.
    std::int64_t GetLatency() const { return isUpdating ? latencyMs * microsecondsPerMs : 0; }

    /// The time of the machine at which something that is done now takes place, in nanoseconds: the beginning
    /// of the update, or `now` outside an update. The library moves virtual sounds on from update to update,
    /// so a sound that loses its channel in one and regains it in another is right to the duration between
    /// the two.
    std::int64_t GetMachineTime(std::int64_t now) const { return isUpdating ? updateTime : now; }

private:
    static constexpr std::int64_t microsecondsPerMs = 1000;

    bool isUpdating = false;
    std::int64_t updateTime = 0;
    std::int64_t elapsed = 0; ///< Between the two last updates.
    std::int64_t latencyMs = 0;
    std::int64_t longest = 0; ///< Maximum since the latency was last checked.
    std::int64_t watchedMs = 0; ///< Time since that check.
};

} // namespace Quon
