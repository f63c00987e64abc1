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

/// Sees to it that a live output has a device: notices when the device goes away, lets all voices run on in
/// silence, and looks for another, on which it makes everything again. Owned by the Feeder and used by its
/// thread alone, with no ContextScope.
///
/// The slow parts, opening and closing, are done with no lock held. The task thread has to wait while the
/// voices change over, which is some calls of OpenAL for each.
class DeviceKeeper : public Allocated
{
public:
    using Channels = std::span<const std::unique_ptr<OpenALChannel>>;

    DeviceKeeper(OutputDevice& outputDevice, VoicePool& voicePool, Acoustics& driverAcoustics);

    /// Who has to be told. Before all else.
    void SetChannels(Channels allChannels) { channels = allChannels; }

    /// Goes over to silence if the device has gone. Once a round, before the channels are pumped.
    void NoticeLoss();

    /// Without a device, looks for one: at once after the loss, each second for half a minute, then every
    /// five seconds, since a machine that has none may write a complaint each time. With the device that has
    /// been found `catchUp` is called, to pump the channels up to the present, and all voices go over to it.
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
