#pragma once

#include <AL/alc.h>

namespace Quon
{

/// Where a live output gets its device from: the only questions that the driver has for the machine. A driver
/// is given one and does not own it; a test can take its place and play a machine whose sound card comes and
/// goes.
class DeviceSource
{
public:
    virtual ~DeviceSource() = default;

    /// The machine's default device, or null; the caller closes it. Can take a while. From one thread at a
    /// time: the task thread when the driver opens, and the driver's own later.
    virtual ALCdevice* Open();

    /// Whether a device that Open() gave is still there. An OpenAL that cannot tell says that it is.
    virtual bool IsConnected(ALCdevice* device);

    /// The machine itself.
    static DeviceSource& GetMachine();
};

} // namespace Quon
