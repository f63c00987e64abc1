#include "drivers/openal/DriverOptions.h"

#include "harmonet/engine/OS.h"

namespace Quon
{

namespace
{

constexpr const char* renderOption = "OpenALRender";
constexpr const char* hrtfOption = "OpenALHRTF";

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
    return read;
}

} // namespace Quon
