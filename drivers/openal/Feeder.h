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
/// until Stop() or destruction, and the channels must not move during that time.
///
/// It checks all channels every 10 ms, so a sound continues through a game frame of any length: no update is
/// needed while it only plays. It also manages the device, which can be lost and return. A channel whose lock
/// is held, because a file is being appended to it, waits for the next round and does not delay others.
class Feeder : public Allocated
{
public:
    using Channels = std::span<const std::unique_ptr<OpenALChannel>>;

    /// `readAheadMs` is clamped to 80..200 ms.
    Feeder(OutputDevice& outputDevice, VoicePool& voicePool, Acoustics& driverAcoustics, int readAheadMs);
    ~Feeder();

    void Start(Channels allChannels);
    /// Waits for the thread to end. It first lets sounds that have just been stopped fade out, for two
    /// periods of the device and at most 150 ms.
    void Stop();

    /// Starts the next round at once. Any thread.
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

    std::mutex mutex; ///< Guards the members below.
    std::condition_variable wake;
    bool isWoken = false;
    bool isEnding = false;
};

} // namespace Quon
