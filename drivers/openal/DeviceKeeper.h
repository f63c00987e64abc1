#pragma once

#include "harmonet/engine/Alloc.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <span>

namespace Quon
{

class Acoustics;
class OpenALChannel;
class OutputDevice;
class VoicePool;

/// Keeps a live output supplied with a device: detects the loss of the device, lets all voices continue in
/// silence, and looks for another device, on which it restores everything. Owned by the Feeder and used by
/// its thread alone, without a ContextScope.
///
/// The slow parts, opening and closing, are done without holding a lock. The task thread must wait while the
/// voices switch devices, which takes a few OpenAL calls per voice.
class DeviceKeeper : public Allocated
{
public:
    using Channels = std::span<const std::unique_ptr<OpenALChannel>>;

    DeviceKeeper(OutputDevice& outputDevice, VoicePool& voicePool, Acoustics& driverAcoustics);

    /// Sets the channels to notify. Call it before any other function.
    void SetChannels(Channels allChannels) { channels = allChannels; }

    /// Switches to silence if the device is lost. Called once per round, before the channels are pumped.
    void NoticeLoss();

    /// Looks for a device if there is none: at once after the loss, each second for half a minute, then every
    /// five seconds, since OpenAL may print an error each time on a machine without one. When a device is
    /// found, `catchUp` is called to pump the channels up to the present, and all voices switch to it.
    void LookForDevice(const std::function<void()>& catchUp);

private:
    void TellChannels();

    OutputDevice& device;
    VoicePool& voices;
    Acoustics& acoustics;
    Channels channels;
    std::int64_t nextTry = 0;
    int triesInVain = 0;
};

} // namespace Quon
