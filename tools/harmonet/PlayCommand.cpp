#include "tools/harmonet/Arguments.h"
#include "tools/harmonet/Commands.h"
#include "tools/harmonet/Playback.h"
#include "tools/harmonet/Rooms.h"
#include "tools/harmonet/Verbose.h"

namespace Tool
{

namespace
{

// The OpenAL driver gives 512, of which the library keeps 4 to spare.
constexpr int mostChannels = 508;

void AddSounds(CLI::App& command, PlayRequest& values)
{
    command
        .add_option("FILE", values.paths, "Sound files and definitions; - is a sound from the standard input")
        ->required();
    command.add_option("--root", values.root,
        "The folder to which names refer, those in definitions and those of files that are not found "
        "otherwise");
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
}

void AddListener(CLI::App& command, PlayRequest& values)
{
    command.add_option("--room", values.room, "Put the listener into a room")
        ->check(CLI::IsMember(RoomNames()));
    command.add_flag(
        "--walk", values.isWalking, "Let the listener pass by the sounds, which loop, in 10 seconds");
    command.add_flag("--watch", values.isWatching,
        "Check the definitions, and check and play again whenever a file is saved, until interrupted");
}

void AddOutput(CLI::App& command, Host::Settings& values)
{
    command.add_option("--channels", values.channels, "How many sounds can be heard at once")
        ->check(CLI::Range(1, mostChannels));
    CLI::Option* const driver =
        command.add_option("--driver", values.drivers, "Output drivers, separated by commas, tried in order");
    command.add_option("--render", values.renderPath, "Write what would be heard to a wave file")
        ->type_name("OUT.wav")
        ->excludes(driver);
    command.add_option("--option", values.options, "An option of the engine, as \"StreamLength=500\"")
        ->type_name("KEY=VALUE")
        ->allow_extra_args(false);
}

void AddRecords(CLI::App& command, PlayRequest& values)
{
    command
        .add_option(
            "--trace", values.tracePath, "Write what happens to the sounds as trace events, for Perfetto")
        ->type_name("OUT.json");
    command.add_option("--timeline", values.timelinePath, "Write what happens to the sounds as a page")
        ->type_name("OUT.html");
}

// The messages of --verbose would go across the screen, and what `check` says too.
void AddScreen(CLI::App& command, PlayRequest& values)
{
    command
        .add_flag("--top", values.isOnScreen,
            "Show in a live table which sounds are heard, which are not and why; keys sort and filter it")
        ->excludes(command.get_option("--watch"))
        ->excludes(command.get_option("--verbose"));
}

} // namespace

void AddPlayCommand(CLI::App& program, Action& action)
{
    const auto request = std::make_shared<PlayRequest>();
    CLI::App& command =
        *program.add_subcommand("play", "Play sound files and definitions together, until all have ended.");
    AddSounds(command, *request);
    AddListener(command, *request);
    AddOutput(command, request->host);
    AddRecords(command, *request);
    AddVerbose(command);
    AddScreen(command, *request);
    command.callback([request, &action] { action = [request] { return Play(*request); }; });
}

} // namespace Tool
