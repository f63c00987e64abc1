#pragma once

#include <chrono>
#include <cstdint>

namespace Quon
{

constexpr std::int64_t nanosecondsPerSecond = 1000000000;

/// The time of the machine, in nanoseconds from any beginning. Never goes back. Any thread.
inline std::int64_t GetSteadyNanoseconds()
{
    const auto sinceStart = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::nanoseconds>(sinceStart).count();
}

} // namespace Quon
