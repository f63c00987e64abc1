#include "tools/harmonet/Host.h"

#include "harmonet/definitions/SndFXList.h"
#include "harmonet/engine/TaskList.h"
#include "tools/harmonet/EngineOptions.h"
#include "tools/harmonet/PathText.h"
#include "tools/harmonet/QuietErrors.h"
#include "tools/harmonet/ToolError.h"

#include <cmath>
#include <filesystem>
#include <fstream>
#include <limits>

namespace Tool
{

namespace
{

constexpr const char* audibleDriver = "HarmonetOpenAL";
constexpr const char* silentDriver = "HarmonetNull";
constexpr const char* renderOption = "OpenALRender";

// A virtual sound advances by the elapsed time of the call in which a full update runs. A full update runs
// once 40 ms have accumulated. With a minimum step above that, every call runs one, and virtual sounds lose
// no time.
constexpr float soundStepSeconds = 0.041F;

void CheckWritable(const std::string& path)
{
    if (!path.empty() && !std::ofstream(ToPath(path), std::ios::app)) {
        throw ToolError("cannot write to '" + path + "'", ExitCode::NoOutput);
    }
}

} // namespace

Host::Host(const Settings& settings)
    : isLive(settings.renderPath.empty() && settings.drivers != silentDriver)
{
    const std::string drivers = settings.drivers.empty() ? audibleDriver : settings.drivers;
    SetOptions(settings, drivers);
    CheckInputs(settings.inputs);
    CheckWritable(settings.renderPath);
    if (!StartSystem()) {
        throw ToolError("no working sound driver among " + drivers +
                (isLive ? "; without an output device, use --render OUT.wav or --driver HarmonetNull"
                        : std::string()),
            ExitCode::NoDriver);
    }
    Quon::TaskList::Get().SetMinimumStep(Quon::PString("HarmonetTask"), soundStepSeconds);
    listener.Activate();
}

bool Host::StartSystem()
{
    // With --verbose, the library's messages go to standard error and must stay visible.
    if (Quon::Messages::AreWanted()) {
        return system.Init(&os, false);
    }
    const QuietErrors quiet;
    return system.Init(&os, false);
}

void Host::SetOptions(const Settings& settings, const std::string& drivers)
{
    Quon::Options& options = *os.GetOptions();
    options.Set("Sound", drivers.c_str());
    if (!settings.renderPath.empty()) {
        options.Set(renderOption, settings.renderPath.c_str());
    }
    if (settings.channels > 0) {
        options.Set("MaxSounds", std::to_string(settings.channels).c_str());
    }
    SetEngineOptions(options, settings.options);
}

void Host::CheckInputs(const std::vector<std::string>& inputs)
{
    // Read the option as the driver does, without spaces around the path.
    os.GetOptions()->SetSeperators(renderOption, "\n");
    Quon::String output;
    if (!os.GetOptions()->GetNext(renderOption, output)) {
        return;
    }
    for (const std::string& input : inputs) {
        std::error_code ignored;
        if (std::filesystem::equivalent(ToPath(input), ToPath(output.GetText()), ignored)) {
            throw ToolError("'" + input + "' is both played and rendered to; these cannot be the same file",
                ExitCode::BadArguments);
        }
    }
}

bool Host::EnterRoom(const Quon::FXEnvReverb& room)
{
    return listener.SetFXEnvReverb(&room, Quon::defaultEnvReverbQuality, 0);
}

void Host::Update(int elapsedMs)
{
    // The library counts whole milliseconds and drops the fraction, so the float must not be below the exact
    // value.
    const float seconds = static_cast<float>(elapsedMs) / 1000.0F;
    Quon::TaskList::Get().Update(std::nextafter(seconds, std::numeric_limits<float>::max()));
    if (Quon::SoundSystem::HasLostOutput()) {
        throw ToolError("the rendered file is cut off: the disk is full or the file has reached 4 GiB",
            ExitCode::NoOutput);
    }
}

} // namespace Tool
