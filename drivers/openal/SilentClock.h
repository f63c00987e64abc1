#pragma once

#include <cstdint>

namespace Quon
{

/// Counts the sample frames of a sound that continues without a device, based on the machine's clock. A plain
/// value; times are nanoseconds.
class SilentClock
{
public:
    /// Starts at `sampleFrames` at the time `now`.
    void Start(std::int64_t sampleFrames, std::int64_t now, double framesPerSecond);
    void Stop() { isRunning = false; }
    bool IsRunning() const { return isRunning; }

    /// Changes the speed.
    void SetSpeed(double framesPerSecond, std::int64_t now);

    /// The current count; 0 if it does not run. It is not limited by the end of the sound.
    std::int64_t GetFrames(std::int64_t now) const;

private:
    double Calculate(std::int64_t now) const;

    bool isRunning = false;
    double begin = 0.0;
    std::int64_t since = 0;
    double speed = 0.0;
};

} // namespace Quon
