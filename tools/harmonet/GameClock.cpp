#include "tools/harmonet/GameClock.h"

#include "tools/harmonet/Host.h"

#include <algorithm>
#include <thread>

namespace Tool
{

namespace
{

using std::chrono::milliseconds;

constexpr milliseconds liveFrame(10);
/// Limits how much of a suspension counts as played.
constexpr milliseconds longestFrame(10'000);

} // namespace

GameClock::GameClock(bool newIsLive)
    : isLive(newIsLive)
    , now(Clock::now())
{
}

int GameClock::WaitForFrame(long remainingMs)
{
    if (!isLive) {
        return static_cast<int>(
            remainingMs < 2 * Host::offlineFrameMs ? std::max(remainingMs, 1L) : Host::offlineFrameMs);
    }

    std::this_thread::sleep_until(now + liveFrame);
    const auto passed = std::chrono::floor<milliseconds>(Clock::now() - now);
    now += passed;
    return static_cast<int>(std::min(passed, longestFrame).count());
}

} // namespace Tool
