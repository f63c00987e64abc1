#pragma once

#include <chrono>
#include <cstdint>

namespace Quon
{

/// When a sound is to begin: in game time, and by the clock of the machine. In microseconds.
struct StartMoment
{
    std::int64_t game = 0;
    std::int64_t machine = 0;
};

/// The game time of the sound system between its full updates, for drivers that keep the time between two
/// starts. A plain value of the kernel's.
class StartClock
{
public:
    /// A full update begins, so long after the last one.
    void BeginUpdate(unsigned long elapsedMs)
    {
        previousUpdate = update;
        update += static_cast<std::int64_t>(elapsedMs) * microsecondsPerMs;
    }

    /// The moment `delayMs` from now. `gathered` has passed since the last full update; 0 during one.
    StartMoment GetMoment(std::int64_t gathered, int delayMs) const
    {
        const std::int64_t delay = delayMs > 0 ? delayMs * microsecondsPerMs : 0;
        return {update + gathered + delay, GetMachineTime() + delay};
    }

    /// The game time now; `gathered` as above.
    std::int64_t GetNow(std::int64_t gathered) const { return update + gathered; }
    /// What SndChannel::SetStartTime() is to be told of it.
    std::int64_t GetGameTime(const StartMoment& moment, bool isUpdating) const
    {
        return moment.game - (isUpdating ? previousUpdate : update);
    }
    std::int64_t GetAge(const StartMoment& moment) const { return GetMachineTime() - moment.machine; }

private:
    static constexpr std::int64_t microsecondsPerMs = 1000;

    static std::int64_t GetMachineTime()
    {
        const auto sinceStart = std::chrono::steady_clock::now().time_since_epoch();
        return std::chrono::duration_cast<std::chrono::microseconds>(sinceStart).count();
    }

    std::int64_t update = 0; ///< The game time of the last full update,
    std::int64_t previousUpdate = 0; ///< and of the one before.
};

} // namespace Quon
