#include "drivers/openal/SilentClock.h"

#include "drivers/openal/SteadyTime.h"

namespace Quon
{

void SilentClock::Start(std::int64_t sampleFrames, std::int64_t now, double framesPerSecond)
{
    isRunning = true;
    begin = static_cast<double>(sampleFrames);
    since = now;
    speed = framesPerSecond;
}

void SilentClock::SetSpeed(double framesPerSecond, std::int64_t now)
{
    begin = Calculate(now);
    since = now;
    speed = framesPerSecond;
}

std::int64_t SilentClock::GetFrames(std::int64_t now) const
{
    return isRunning ? static_cast<std::int64_t>(Calculate(now)) : 0;
}

double SilentClock::Calculate(std::int64_t now) const
{
    return begin + static_cast<double>(now - since) * speed / nanosecondsPerSecond;
}

} // namespace Quon
