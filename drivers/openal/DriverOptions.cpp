#include "drivers/openal/DriverOptions.h"

#include "harmonet/engine/OS.h"

#include <algorithm>

namespace Quon
{

namespace
{

constexpr const char* renderOption = "OpenALRender";
constexpr const char* hrtfOption = "OpenALHRTF";
constexpr const char* fallbackOption = "OpenALFallback";
constexpr const char* resamplingOption = "OpenALResampling";
constexpr const char* handoverFadeOption = "OpenALHandoverFade";
constexpr int longestHandoverFadeMs = 100;

Hrtf ReadHrtf(const Options& options)
{
    int value = 0;
    options.Get(hrtfOption, value, -1);
    switch (value) {
    case 0:
        return Hrtf::Off;
    case 1:
        return Hrtf::On;
    default:
        return Hrtf::DeviceDefault;
    }
}

bool ReadFallback(const Options& options)
{
    int value = 0;
    options.Get(fallbackOption, value, 0);
    return value == 1;
}

RateGrade ReadRateGrade(const Options& options)
{
    int value = 0;
    options.Get(resamplingOption, value, 1);
    switch (value) {
    case 0:
        return RateGrade::Fast;
    case 2:
        return RateGrade::Best;
    default:
        return RateGrade::Good;
    }
}

} // namespace

DriverOptions ReadOptions(const OS* os)
{
    DriverOptions read;
    Options* const options = os ? os->GetOptions() : nullptr;
    if (!options) {
        return read;
    }
    // A path can hold anything but the end of a line.
    options->SetSeperators(renderOption, "\n");
    read.isRendered = options->GetNext(renderOption, read.renderPath);
    read.hrtf = ReadHrtf(*options);
    read.fallback = ReadFallback(*options);
    read.rateGrade = ReadRateGrade(*options);
    options->Get(handoverFadeOption, read.handoverFadeMs, read.handoverFadeMs);
    read.handoverFadeMs = std::clamp(read.handoverFadeMs, 0, longestHandoverFadeMs);
    return read;
}

} // namespace Quon
