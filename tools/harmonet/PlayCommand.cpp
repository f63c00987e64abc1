#include "harmonet/files/SndFileService.h"
#include "harmonet/instances/Sound.h"
#include "tools/harmonet/Arguments.h"
#include "tools/harmonet/Commands.h"
#include "tools/harmonet/GameClock.h"
#include "tools/harmonet/Host.h"
#include "tools/harmonet/Interrupt.h"
#include "tools/harmonet/PlayReport.h"
#include "tools/harmonet/SoundData.h"
#include "tools/harmonet/ToolError.h"

#include <cmath>
#include <limits>

namespace Tool
{

namespace
{

// How a positional sound loses gain: full up to the first, no further loss beyond the second.
constexpr float minDistance = 1.0F;
constexpr float maxDistance = 500.0F;
constexpr float allAround = 360.0F; ///< Degrees of a cone that is none.

// The OpenAL driver gives 512, of which the library keeps 4 to spare.
constexpr int mostChannels = 508;

struct PlayArguments
{
    std::vector<std::string> paths;
    std::vector<float> position; ///< Empty, or x, y, z.
    bool isLooping = false;
    float gain = 1.0F;
    int priority = 0;
    double seconds = 0.0; ///< 0 for as long as the sounds last.
    Host::Settings host;
};

int Start(Quon::Sound& group, const PlayArguments& arguments, const Quon::PString& name, int flags)
{
    if (arguments.position.empty())
        return group.Play2DSound(name, nullptr, flags, arguments.priority, 0);
    Quon::Sound::Settings settings;
    settings.setCone = true;
    settings.innerConeAngle = allAround;
    settings.outerConeAngle = allAround;
    settings.coneGain = 1.0F;
    settings.setDistance = true;
    settings.minDistance = minDistance;
    settings.maxDistance = maxDistance;
    const Quon::Vector3 position{arguments.position[0], arguments.position[1], arguments.position[2]};
    return group.Play3DSound(position, name, nullptr, flags, arguments.priority, settings, 0);
}

void StartOrFail(Quon::Sound& group, const PlayArguments& arguments, const FileArguments::File& file)
{
    const int flags = arguments.isLooping ? Quon::Sound::StartLooping : 0;
    // At once, so that a rendered file begins with the sound. More sounds than channels have to compete.
    if (Start(group, arguments, file.name, flags | Quon::Sound::StartImmediately) == 0 &&
        Start(group, arguments, file.name, flags) == 0)
        throw ToolError("'" + file.shown + "' cannot be played", ExitCode::BadInput);
}

long LimitMs(const PlayArguments& arguments)
{
    return arguments.seconds > 0.0 ? std::lround(arguments.seconds * 1000.0)
                                   : std::numeric_limits<long>::max();
}

/// Refuses what is no sound before any device is touched.
void CheckSounds(const FileArguments& files)
{
    const Quon::SndFileService service;
    for (const FileArguments::File& file : files.GetFiles())
        OpenSoundData(file);
}

ExitCode RunPlay(const PlayArguments& arguments)
{
    if (arguments.isLooping && arguments.seconds <= 0.0 && !arguments.host.renderPath.empty())
        throw ToolError("a loop has no end; rendering one needs --seconds", ExitCode::BadArguments);
    const FileArguments files(arguments.paths);
    CheckSounds(files);
    CatchInterrupt();
    Host::Settings settings = arguments.host;
    settings.inputs = arguments.paths;
    Host host(settings);
    PlayReport report;
    Quon::Sound group;
    group.AddObserver(&report);
    group.SetGain(arguments.gain);
    for (const FileArguments::File& file : files.GetFiles()) {
        report.ExpectSound(file.name, file.shown);
        StartOrFail(group, arguments, file);
    }

    GameClock clock(host.IsLive());
    const long limitMs = LimitMs(arguments);
    long playedMs = 0;
    do {
        const int elapsedMs = clock.WaitForFrame(limitMs - playedMs);
        host.Update(elapsedMs);
        playedMs += elapsedMs;
        report.ShowProgress(static_cast<unsigned long>(playedMs));
    } while (report.IsUnfinished() && playedMs < limitMs && !IsInterrupted());
    return ExitCode::Done;
}

} // namespace

void AddPlayCommand(CLI::App& program, Action& action)
{
    const auto arguments = std::make_shared<PlayArguments>();
    PlayArguments& values = *arguments;
    CLI::App& command = *program.add_subcommand("play", "Play sound files together, until all have ended.");
    command.add_option("FILE", values.paths, "The sound files")->required();
    command
        .add_option(
            "--at", values.position, "Place of the sounds, the listener being at 0,0,0 looking along -z")
        ->type_name("X,Y,Z")
        ->delimiter(',')
        ->check(FiniteNumber())
        ->expected(3)
        ->allow_extra_args(false);
    command.add_flag("--loop", values.isLooping, "Play without end");
    command.add_option("--gain", values.gain, "Linear gain")
        ->check(FiniteNumber())
        ->check(CLI::Range(0.0, 1.0));
    command.add_option("--priority", values.priority, "Greater is more important");
    command.add_option("--seconds", values.seconds, "Stop after this time")
        ->check(FiniteNumber())
        ->check(CLI::Range(0.1, 1e6));
    command.add_option("--channels", values.host.channels, "How many sounds can be heard at once")
        ->check(CLI::Range(1, mostChannels));
    CLI::Option* const driver = command.add_option(
        "--driver", values.host.drivers, "Output drivers, separated by commas, tried in order");
    command.add_option("--render", values.host.renderPath, "Write what would be heard to a wave file")
        ->type_name("OUT.wav")
        ->excludes(driver);
    command.add_option("--option", values.host.options, "An option of the engine, as \"StreamLength=500\"")
        ->type_name("KEY=VALUE")
        ->allow_extra_args(false);
    command.callback([arguments, &action] { action = [arguments] { return RunPlay(*arguments); }; });
}

} // namespace Tool
