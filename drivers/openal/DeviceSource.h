#pragma once

#include <AL/alc.h>

namespace Quon
{

/// The source of a live output's device. A driver receives one and does not own it; a test can override it to
/// simulate a machine whose device comes and goes.
class DeviceSource
{
public:
    virtual ~DeviceSource() = default;

    /// Opens the machine's default device; the caller closes it. Returns null on failure. Can take a while.
    /// Called by one thread at a time: the task thread when the driver opens, and the driver's own thread
    /// later.
    virtual ALCdevice* Open();

    /// Whether a device returned by Open() is still connected. Returns true if OpenAL cannot determine it.
    virtual bool IsConnected(ALCdevice* device);

    /// The source for the real machine.
    static DeviceSource& GetMachine();
};

} // namespace Quon
