#include "drivers/openal/DriverOptions.h"

#include "harmonet/engine/OS.h"

namespace Quon
{

namespace
{

constexpr const char* renderOption = "OpenALRender";
constexpr const char* hrtfOption = "OpenALHRTF";
constexpr const char* fallbackOption = "OpenALFallback";

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
    return read;
}

} // namespace Quon
