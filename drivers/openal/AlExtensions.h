#pragma once

#include "drivers/openal/SoftVersion.h"

#include <AL/al.h>
#include <AL/alc.h>
#include <AL/alext.h>

namespace Quon
{

/// The functions of OpenAL Soft that must be queried by name. A plain table, filled once when the driver
/// opens and then only read, from any thread.
struct AlExtensions
{
    PFNALCSETTHREADCONTEXTPROC setThreadContext = nullptr;
    PFNALCGETTHREADCONTEXTPROC getThreadContext = nullptr;
    LPALCLOOPBACKOPENDEVICESOFT loopbackOpenDevice = nullptr;
    LPALCRENDERSAMPLESSOFT renderSamples = nullptr;
    LPALDEFERUPDATESSOFT deferUpdates = nullptr;
    LPALPROCESSUPDATESSOFT processUpdates = nullptr;
    LPALCGETINTEGER64VSOFT getInteger64v = nullptr; ///< Null if the device has no clock.

    SoftVersion version = SoftVersion::New;

    /// Loads OpenAL itself and the functions that need neither device nor context. Returns false if any is
    /// missing.
    bool LoadGlobal();
    /// Loads the functions that need a device with a current context. Returns false if any but the clock is
    /// missing.
    bool LoadForDevice(ALCdevice* device);
};

} // namespace Quon
