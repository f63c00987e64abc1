#pragma once

#include "drivers/openal/SoftVersion.h"

#include <AL/al.h>
#include <AL/alc.h>
#include <AL/alext.h>

namespace Quon
{

/// The functions of OpenAL Soft that have to be asked for by name. A plain table, filled once when the driver
/// opens and then only read, from any thread.
struct AlExtensions
{
    PFNALCSETTHREADCONTEXTPROC setThreadContext = nullptr;
    PFNALCGETTHREADCONTEXTPROC getThreadContext = nullptr;
    LPALCLOOPBACKOPENDEVICESOFT loopbackOpenDevice = nullptr;
    LPALCRENDERSAMPLESSOFT renderSamples = nullptr;
    LPALDEFERUPDATESSOFT deferUpdates = nullptr;
    LPALPROCESSUPDATESSOFT processUpdates = nullptr;
    LPALCGETINTEGER64VSOFT getInteger64v = nullptr; ///< Null where there is no clock of the device.

    SoftVersion version = SoftVersion::New;

    /// OpenAL itself, and what needs no device and no context. False if any of it is missing.
    bool LoadGlobal();
    /// What needs a device with a current context. False if any but the clock is missing.
    bool LoadForDevice(ALCdevice* device);
};

} // namespace Quon
