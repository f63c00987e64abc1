#include "drivers/openal/DeviceSource.h"

#include <AL/alext.h>

namespace Quon
{

ALCdevice* DeviceSource::Open()
{
    return alcOpenDevice(nullptr);
}

bool DeviceSource::IsConnected(ALCdevice* device)
{
    ALCint isConnected = ALC_TRUE;
    if (alcIsExtensionPresent(device, "ALC_EXT_disconnect")) {
        alcGetIntegerv(device, ALC_CONNECTED, 1, &isConnected);
    }
    return isConnected == ALC_TRUE;
}

DeviceSource& DeviceSource::GetMachine()
{
    static DeviceSource machine;
    return machine;
}

} // namespace Quon
