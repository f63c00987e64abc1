#pragma once

#include "harmonet/engine/String.h"

namespace Quon
{

class OS;

/// Whether positional sounds are rendered binaurally, with a head-related transfer function, for headphones.
enum class Hrtf
{
    DeviceDefault,
    Off,
    On
};

/// The quality of the conversion to the output's rate.
enum class RateGrade
{
    Fast, ///< By OpenAL's mixer, with linear interpolation.
    Good, ///< By libsoxr, with a passband up to 0.9 of the lower Nyquist frequency.
    Best ///< By libsoxr, with its best filter.
};

/// The engine's options for this driver. A plain value, read once when the driver opens.
struct DriverOptions
{
    bool isRendered = false; ///< "OpenALRender" names a file.
    String renderPath;
    Hrtf hrtf = Hrtf::DeviceDefault; ///< "OpenALHRTF": 0 off, 1 on, anything else the device's default.
    bool fallback = false; ///< "OpenALFallback" is 1: also open without a device.
    RateGrade rateGrade = RateGrade::Good; ///< "OpenALResampling": 0 fast, 1 good, 2 best.
    /// "OpenALHandoverFade", 0 to 100: the duration of the fade-out of a displaced sound, and of the fade-in
    /// of a resumed one.
    int handoverFadeMs = 30;
    int renderThreads = 2; ///< "OpenALRenderThreads", 1 to 16: threads that read, decode and resample.
    bool keepsStartTimes = true; ///< Unless "OpenALKeepStartTimes" is 0.
};

/// Returns the defaults if there is no OS or it has no options.
DriverOptions ReadOptions(const OS* os);

} // namespace Quon
