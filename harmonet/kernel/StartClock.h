#pragma once

#include <chrono>
#include <cstdint>

namespace Quon
{

/// The game time of the sound system between its full updates, and the machine's clock, for drivers that keep
/// the time between two starts. In microseconds.
class StartClock
{
public:
    static constexpr std::int64_t microsecondsPerMs = 1000;
    /// A machine time that means "at once".
    static constexpr std::int64_t now = 0;

    /// Begins a full update, `elapsedMs` after the last one.
    void BeginUpdate(unsigned long elapsedMs)
    {
        previousUpdate = update;
        update += static_cast<std::int64_t>(elapsedMs) * microsecondsPerMs;
    }

    /// Returns the game time `delayMs` from now. `gathered` is the time since the last full update; 0 during
    /// one.
    std::int64_t GetGameTime(std::int64_t gathered, int delayMs) const
    {
        return update + gathered + ToMicroseconds(delayMs);
    }
    static std::int64_t GetMachineTime(int delayMs)
    {
        const auto sinceStart = std::chrono::steady_clock::now().time_since_epoch();
        return std::chrono::duration_cast<std::chrono::microseconds>(sinceStart).count() +
            ToMicroseconds(delayMs);
    }

    /// Converts a game time to the first argument of SndChannel::SetStartTime().
    std::int64_t GetSinceUpdate(std::int64_t gameTime, bool isUpdating) const
    {
        return gameTime - (isUpdating ? previousUpdate : update);
    }
    /// Returns the time since that machine time.
    static std::int64_t GetAge(std::int64_t machineTime)
    {
        return machineTime != now ? GetMachineTime(0) - machineTime : 0;
    }

private:
    static std::int64_t ToMicroseconds(int ms) { return ms > 0 ? ms * microsecondsPerMs : 0; }

    std::int64_t update = 0; ///< Game time of the last full update.
    std::int64_t previousUpdate = 0; ///< Game time of the previous one.
};

} // namespace Quon
