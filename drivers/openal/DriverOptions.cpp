#include "drivers/openal/DriverOptions.h"

#include "harmonet/engine/Messages.h"
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
constexpr const char* startTimesOption = "OpenALKeepStartTimes";
constexpr const char* renderThreadsOption = "OpenALRenderThreads";
constexpr int maxRenderThreads = 16;
constexpr int longestHandoverFadeMs = 100;

int ReadInt(const Options& options, const char* name, int standard)
{
    int value = 0;
    options.Get(name, value, standard);
    return value;
}

Hrtf ReadHrtf(const Options& options)
{
    switch (ReadInt(options, hrtfOption, -1)) {
    case 0:
        return Hrtf::Off;
    case 1:
        return Hrtf::On;
    default:
        return Hrtf::DeviceDefault;
    }
}

RateGrade ReadRateGrade(const Options& options)
{
    switch (ReadInt(options, resamplingOption, 1)) {
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
    // A path can contain any character except a line break.
    options->SetSeperators(renderOption, "\n");
    read.isRendered = options->GetNext(renderOption, read.renderPath);
    read.hrtf = ReadHrtf(*options);
    read.fallback = ReadInt(*options, fallbackOption, 0) == 1;
    read.rateGrade = ReadRateGrade(*options);
    read.handoverFadeMs =
        std::clamp(ReadInt(*options, handoverFadeOption, read.handoverFadeMs), 0, longestHandoverFadeMs);
    read.renderThreads =
        std::clamp(ReadInt(*options, renderThreadsOption, read.renderThreads), 1, maxRenderThreads);
    read.keepsStartTimes = ReadInt(*options, startTimesOption, 1) != 0;
    return read;
}

} // namespace Quon
