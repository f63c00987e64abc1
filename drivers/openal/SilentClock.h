#pragma once

#include <cstdint>

namespace Quon
{

/// Counts the sample frames of a sound that runs on with no device to play it, by the time of the machine. A
/// plain value; times are nanoseconds.
class SilentClock
{
public:
    /// Stands at `sampleFrames` at the time `now` and runs from there.
    void Start(std::int64_t sampleFrames, std::int64_t now, double framesPerSecond);
    void Stop() { isRunning = false; }
    bool IsRunning() const { return isRunning; }

    /// Runs on at another speed.
    void SetSpeed(double framesPerSecond, std::int64_t now);

    /// Where it stands, 0 when it does not run. It knows no end of the sound.
    std::int64_t GetFrames(std::int64_t now) const;

private:
    double Calculate(std::int64_t now) const;

    bool isRunning = false;
    double begin = 0.0;
    std::int64_t since = 0;
    double speed = 0.0;
};

} // namespace Quon
