#pragma once

#include "drivers/openal/OpenALChannel.h"

#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <span>
#include <thread>

namespace Quon
{

/// Threads that read, decode and resample for all channels while the output is rendered. Owned by the
/// OfflineRenderer; they work between Begin() and Finish() and in Resample() only, and the output does not
/// depend on their number.
class ReadCrew : public Allocated
{
public:
    using Channels = std::span<const std::unique_ptr<OpenALChannel>>;

    /// `threads` includes the calling one: with 1 there is no parallel work.
    explicit ReadCrew(int threads);
    ~ReadCrew();

    /// Starts reading `newMicroseconds` ahead of the queues. The channels must not move until Finish().
    void Begin(Channels newChannels, std::int64_t newMicroseconds);

    /// Takes part in the work and returns when all has been read.
    void Finish();

    /// Lets all threads resample for the channels' current round, after the reading, and returns when that is
    /// done.
    void Resample(Channels newChannels);

private:
    void StartRound(Channels newChannels, bool resample, std::int64_t newMicroseconds);
    void Run();
    void Work();

    Channels channels; ///< These three change only while no helper thread works.
    bool isResampling = false; ///< The work of this round; otherwise it is reading.
    std::int64_t microseconds = 0; ///< How far to read ahead.
    std::atomic<std::size_t> next = 0; ///< The next channel.
    std::atomic<bool> isIncomplete = false; ///< A sound had not begun when its turn came. Publishes nothing.

    std::mutex mutex; ///< Guards the members below.
    std::condition_variable wake;
    std::condition_variable done;
    unsigned round = 0;
    int working = 0; ///< Helper threads that have not finished the round.
    bool isEnding = false;
    EngineVector<std::thread> helpers;
};

} // namespace Quon
