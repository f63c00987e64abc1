#include "drivers/openal/ReadCrew.h"

namespace Quon
{

ReadCrew::ReadCrew(int threads)
{
    for (int i = 1; i < threads; ++i) {
        helpers.emplace_back([this] { Run(); });
    }
}

ReadCrew::~ReadCrew()
{
    {
        const std::scoped_lock lock(mutex);
        isEnding = true;
    }
    wake.notify_all();
    for (std::thread& helper : helpers) {
        helper.join();
    }
}

void ReadCrew::Begin(Channels newChannels, std::int64_t newMicroseconds)
{
    StartRound(newChannels, false, newMicroseconds);
}

void ReadCrew::Resample(Channels newChannels)
{
    Finish();
    StartRound(newChannels, true, 0);
    Finish();
}

void ReadCrew::StartRound(Channels newChannels, bool resample, std::int64_t newMicroseconds)
{
    {
        // A thread that woke up late for the last round may still be looking for work.
        std::unique_lock lock(mutex);
        done.wait(lock, [this] { return working == 0; });
        channels = newChannels;
        isResampling = resample;
        microseconds = newMicroseconds;
        next = 0;
        ++round;
    }
    wake.notify_all();
}

void ReadCrew::Finish()
{
    Work();
    std::unique_lock lock(mutex);
    done.wait(lock, [this] { return working == 0; });
    // The renderer has begun these sounds in the meantime.
    if (isIncomplete.exchange(false)) {
        for (const auto& channel : channels) {
            channel->ReadAhead(microseconds);
        }
    }
}

// From the last channel on: the renderer pumps them from the first one on at the same time, and would wait
// for the lock of each otherwise.
void ReadCrew::Work()
{
    for (std::size_t i = next++; i < channels.size(); i = next++) {
        OpenALChannel& channel = *channels[channels.size() - 1 - i];
        if (isResampling) {
            channel.Resample();
        }
        else if (!channel.ReadAhead(microseconds)) {
            isIncomplete = true;
        }
    }
}

void ReadCrew::Run()
{
    unsigned seen = 0;
    std::unique_lock lock(mutex);
    while (true) {
        wake.wait(lock, [&] { return isEnding || round != seen; });
        if (isEnding) {
            return;
        }
        seen = round;
        ++working;
        lock.unlock();
        Work();
        lock.lock();
        --working;
        done.notify_one();
    }
}

} // namespace Quon
