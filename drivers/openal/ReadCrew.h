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

/// Threads that read and decode for all channels while the output is rendered. Owned by the OfflineRenderer;
/// they work between Begin() and Finish() only, so that everything outside stands still, and what has been
/// read after Finish() does not depend on how many threads there are.
class ReadCrew : public Allocated
{
public:
    using Channels = std::span<const std::unique_ptr<OpenALChannel>>;

    /// `threads` counts the one that calls: with 1 nothing goes on beside it.
    explicit ReadCrew(int threads);
    ~ReadCrew();

    /// Begins to read so far ahead of what has been queued. The channels stay where they are until Finish().
    void Begin(Channels newChannels, std::int64_t newMicroseconds);

    /// Takes part, and returns when all has been read.
    void Finish();

private:
    void Run();
    void Work();

    Channels channels; ///< These two change only while no helper works.
    std::int64_t microseconds = 0;
    std::atomic<std::size_t> next = 0; ///< The channel that is to be read next.

    std::mutex mutex; ///< Guards what follows.
    std::condition_variable wake;
    std::condition_variable done;
    unsigned round = 0;
    int working = 0; ///< Helpers that have not come to the end of a round.
    bool isEnding = false;
    EngineVector<std::thread> helpers;
};

} // namespace Quon
