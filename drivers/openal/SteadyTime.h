#pragma once

#include <chrono>
#include <cstdint>

namespace Quon
{

constexpr std::int64_t nanosecondsPerSecond = 1000000000;

/// The machine's monotonic time in nanoseconds since an unspecified epoch. Any thread.
inline std::int64_t GetSteadyNanoseconds()
{
    const auto sinceStart = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::nanoseconds>(sinceStart).count();
}

} // namespace Quon
