#pragma once

#include "harmonet/engine/String.h"

namespace Quon
{

class OS;

/// Whether positional sounds are worked out for two ears, for headphones ("head-related transfer function").
enum class Hrtf
{
    DeviceDefault,
    Off,
    On
};

/// What the engine's options tell this driver. A plain value, read once when the driver opens.
struct DriverOptions
{
    bool isRendered = false; ///< "OpenALRender" names a file.
    String renderPath;
    Hrtf hrtf = Hrtf::DeviceDefault; ///< "OpenALHRTF": 0 off, 1 on, anything else the device's default.
    bool fallback = false; ///< "OpenALFallback" is 1: a machine without a device will do.
};

/// All defaults without an OS or without options.
DriverOptions ReadOptions(const OS* os);

} // namespace Quon
