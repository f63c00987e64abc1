#include "tools/harmonet/Host.h"

#include "harmonet/engine/TaskList.h"
#include "tools/harmonet/QuietErrors.h"
#include "tools/harmonet/ToolError.h"

#include <cmath>
#include <fstream>
#include <limits>

namespace Tool
{

namespace
{

constexpr const char* loudDriver = "HarmonetOpenAL";
constexpr const char* silentDriver = "HarmonetNull";

// An emulated sound moves on by the seconds of the call in which a full update runs, and that takes 40 ms. A
// task that never gets less than this has all of the time in that call, and emulated sounds lose none.
constexpr float soundStepSeconds = 0.041F;

void CheckWritable(const std::string& path)
{
    if (!path.empty() && !std::ofstream(path, std::ios::app))
        throw ToolError("cannot write '" + path + "'");
}

} // namespace

Host::Host(const Settings& settings)
    : isLive(settings.renderPath.empty() && settings.drivers != silentDriver)
{
    const std::string drivers = settings.drivers.empty() ? loudDriver : settings.drivers;
    SetOptions(settings, drivers);
    CheckWritable(settings.renderPath);
    if (!StartSystem()) {
        throw ToolError("no sound driver works of those tried (" + drivers + ")" +
            (isLive ? "; without an output device there are --render OUT.wav and --driver HarmonetNull"
                    : std::string()));
    }
    Quon::TaskList::Get().SetMinimumStep(Quon::PString("HarmonetTask"), soundStepSeconds);
    listener.Activate();
}

bool Host::StartSystem()
{
    const QuietErrors quiet;
    return system.Init(&os, false);
}

void Host::SetOptions(const Settings& settings, const std::string& drivers)
{
    Quon::Options& options = *os.GetOptions();
    options.Set("Sound", drivers.c_str());
    if (!settings.renderPath.empty())
        options.Set("OpenALRender", settings.renderPath.c_str());
    if (settings.channels > 0)
        options.Set("MaxSounds", std::to_string(settings.channels).c_str());
    for (const std::string& option : settings.options) {
        if (!options.SetFromText(option.c_str()))
            throw ToolError("'" + option + "' is no option of the form Key=Value");
    }
}

void Host::Update(int elapsedMs)
{
    // The library counts whole milliseconds and drops the rest, so the nearest float must not lie below.
    const float seconds = static_cast<float>(elapsedMs) / 1000.0F;
    Quon::TaskList::Get().Update(std::nextafter(seconds, std::numeric_limits<float>::max()));
}

} // namespace Tool
