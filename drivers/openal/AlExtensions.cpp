#include "drivers/openal/AlExtensions.h"

#include "drivers/openal/AlLibrary.h"

namespace Quon
{

namespace
{

template<class Function>
bool LoadFromDevice(Function& function, ALCdevice* device, const char* name)
{
    function = reinterpret_cast<Function>(alcGetProcAddress(device, name));
    return function;
}

template<class Function>
bool LoadFromContext(Function& function, const char* name)
{
    function = reinterpret_cast<Function>(alGetProcAddress(name));
    return function;
}

} // namespace

bool AlExtensions::LoadGlobal()
{
    return LoadAlLibrary() && alcIsExtensionPresent(nullptr, "ALC_EXT_thread_local_context") &&
        alcIsExtensionPresent(nullptr, "ALC_SOFT_loopback") &&
        LoadFromDevice(setThreadContext, nullptr, "alcSetThreadContext") &&
        LoadFromDevice(getThreadContext, nullptr, "alcGetThreadContext") &&
        LoadFromDevice(loopbackOpenDevice, nullptr, "alcLoopbackOpenDeviceSOFT") &&
        LoadFromDevice(renderSamples, nullptr, "alcRenderSamplesSOFT");
}

bool AlExtensions::LoadForDevice(ALCdevice* device)
{
    if (!alIsExtensionPresent("AL_EXT_FLOAT32") || !alIsExtensionPresent("AL_SOFT_deferred_updates")) {
        return false;
    }
    version = GetSoftVersion();
    if (alcIsExtensionPresent(device, "ALC_SOFT_device_clock")) {
        LoadFromDevice(getInteger64v, device, "alcGetInteger64vSOFT");
    }
    return LoadFromContext(deferUpdates, "alDeferUpdatesSOFT") &&
        LoadFromContext(processUpdates, "alProcessUpdatesSOFT");
}

} // namespace Quon
