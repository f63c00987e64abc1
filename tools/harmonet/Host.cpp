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

constexpr const char* loudDriver = "HarmonetOpenAL";
constexpr const char* silentDriver = "HarmonetNull";
constexpr const char* renderOption = "OpenALRender";

// An emulated sound moves on by the seconds of the call in which a full update runs, and that takes 40 ms. A
// task that never gets less than this has all of the time in that call, and emulated sounds lose none.
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
    const std::string drivers = settings.drivers.empty() ? loudDriver : settings.drivers;
    SetOptions(settings, drivers);
    CheckInputs(settings.inputs);
    CheckWritable(settings.renderPath);
    if (!StartSystem()) {
        throw ToolError("no sound driver works of those tried (" + drivers + ")" +
                (isLive ? "; without an output device there are --render OUT.wav and --driver HarmonetNull"
                        : std::string()),
            ExitCode::NoDriver);
    }
    Quon::TaskList::Get().SetMinimumStep(Quon::PString("HarmonetTask"), soundStepSeconds);
    listener.Activate();
}

bool Host::StartSystem()
{
    // With --verbose the error stream has messages of ours on it.
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
    // As the driver reads it, which leaves out blanks around the path.
    os.GetOptions()->SetSeperators(renderOption, "\n");
    Quon::String output;
    if (!os.GetOptions()->GetNext(renderOption, output)) {
        return;
    }
    for (const std::string& input : inputs) {
        std::error_code ignored;
        if (std::filesystem::equivalent(ToPath(input), ToPath(output.GetText()), ignored)) {
            throw ToolError("'" + input + "' is played and rendered into; these cannot be the same file",
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
    // The library counts whole milliseconds and drops the rest, so the nearest float must not lie below.
    const float seconds = static_cast<float>(elapsedMs) / 1000.0F;
    Quon::TaskList::Get().Update(std::nextafter(seconds, std::numeric_limits<float>::max()));
    if (Quon::SoundSystem::HasLostOutput()) {
        throw ToolError("the rendered file is cut off: the disk is full, or the file has reached 4 GiB",
            ExitCode::NoOutput);
    }
}

} // namespace Tool
