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

/// How sounds are converted to the rate of the output.
enum class RateGrade
{
    Fast, ///< By OpenAL's mixer, in a straight line between sample frames.
    Good, ///< By libsoxr, with a clean band up to 0.9 of the lower half rate.
    Best ///< The same with its best filter.
};

/// What the engine's options tell this driver. A plain value, read once when the driver opens.
struct DriverOptions
{
    bool isRendered = false; ///< "OpenALRender" names a file.
    String renderPath;
    Hrtf hrtf = Hrtf::DeviceDefault; ///< "OpenALHRTF": 0 off, 1 on, anything else the device's default.
    bool fallback = false; ///< "OpenALFallback" is 1: a machine without a device will do.
    RateGrade rateGrade = RateGrade::Good; ///< "OpenALResampling": 0 fast, 1 good, 2 best.
    /// "OpenALHandoverFade", 0 to 100: how long a sound that is displaced fades out, and one that comes back
    /// fades in.
    int handoverFadeMs = 30;
    int renderThreads = 2; ///< "OpenALRenderThreads", 1 to 16: what reads and decodes for a rendered file.
    bool keepsStartTimes = true; ///< Unless "OpenALKeepStartTimes" is 0.
};

/// All defaults without an OS or without options.
DriverOptions ReadOptions(const OS* os);

} // namespace Quon
