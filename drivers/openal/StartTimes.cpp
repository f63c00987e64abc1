#include "drivers/openal/StartTimes.h"

#include <algorithm>

namespace Quon
{

namespace
{
constexpr std::int64_t hitchMs = 100;
constexpr std::int64_t longestLatencyMs = 500;
constexpr std::int64_t watchMs = 2000;
} // namespace

void StartTimes::BeginUpdate(std::uint32_t elapsedMs, std::int64_t machineTime)
{
    isUpdating = true;
    updateTime = machineTime;
    const bool isHitch = elapsedMs > hitchMs && elapsed <= hitchMs;
    elapsed = elapsedMs;
    watchedMs += elapsed;
    if (!isHitch) {
        longest = std::max(longest, std::min(elapsed, longestLatencyMs));
    }
    latencyMs = std::max(latencyMs, longest);
    if (watchedMs >= watchMs) {
        latencyMs = longest > 0 ? longest : latencyMs;
        longest = 0;
        watchedMs = 0;
    }
}

std::int64_t StartTimes::GetDelay(std::int64_t askedMicroseconds) const
{
    const std::int64_t passed = isUpdating ? elapsed * microsecondsPerMs : 0;
    return std::max<std::int64_t>(GetLatency() + askedMicroseconds - passed, 0);
}

} // namespace Quon
