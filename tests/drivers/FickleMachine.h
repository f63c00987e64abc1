#pragma once

#include "drivers/openal/DeviceSource.h"
#include "drivers/openal/OpenALDriver.h"

#include <atomic>

namespace Quon
{

/// A machine whose sound card the test removes and restores. It must outlive the driver. Any thread.
class FickleMachine : public DeviceSource
{
public:
    ALCdevice* Open() override
    {
        ALCdevice* const device = isThere ? DeviceSource::Open() : nullptr;
        timesOpened += device ? 1 : 0;
        return device;
    }
    bool IsConnected(ALCdevice* device) override
    {
        return !hasGoneOnce.exchange(false) && isThere && DeviceSource::IsConnected(device);
    }

    std::unique_ptr<SndDriver> MakeDriver() { return std::make_unique<OpenALDriver>(*this); }

    std::atomic<int> timesOpened = 0;
    std::atomic<bool> isThere = true;
    std::atomic<bool> hasGoneOnce = false; ///< It is removed and available again at once.
};

} // namespace Quon
