#pragma once

#include "drivers/openal/DeviceKeeper.h"
#include "drivers/openal/OpenALChannel.h"

#include <condition_variable>
#include <memory>
#include <mutex>
#include <span>
#include <thread>

namespace Quon
{

/// The thread that keeps the channels of a live output filled. Owned by the driver; it runs from Start()
/// until Stop(), or the destruction, and the channels must stay where they are for that time.
///
/// It looks at all channels every 10 ms, so that a sound goes on through any game frame that is not longer
/// than what is read ahead plus the time between two updates, and through longer ones too: no update is
/// needed for a sound that only plays on. It also looks after the device, which can go away and come back. A
/// channel whose lock is taken, by somebody who appends a file to it, waits for the next round and holds up
/// no other.
class Feeder : public Allocated
{
public:
    using Channels = std::span<const std::unique_ptr<OpenALChannel>>;

    /// `readAheadMs` is held to 80 to 200 ms.
    Feeder(OutputDevice& outputDevice, VoicePool& voicePool, Acoustics& driverAcoustics, int readAheadMs);
    ~Feeder();

    void Start(Channels allChannels);
    /// Waits for the thread to end, which lets sounds that have just been stopped fall silent first: two
    /// periods of the device, and 150 ms at most.
    void Stop();

    /// Has the next round begin at once. Any thread.
    void Wake();

private:
    void Run();
    void Round();
    void FinishFades();
    bool WaitForRound();

    const OutputDevice& device;
    VoicePool& voices;
    Acoustics& acoustics;
    DeviceKeeper keeper;
    const PumpTargets targets;
    Channels channels; ///< Set before the thread starts.
    std::thread thread;

    std::mutex mutex; ///< Guards what follows.
    std::condition_variable wake;
    bool isWoken = false;
    bool isEnding = false;
};

} // namespace Quon
