#include "tools/harmonet/Arguments.h"
#include "tools/harmonet/Commands.h"
#include "tools/harmonet/Playback.h"
#include "tools/harmonet/Rooms.h"
#include "tools/harmonet/Verbose.h"

namespace Tool
{

namespace
{

// The OpenAL driver provides 512 channels, of which the library keeps 4 in reserve.
constexpr int maxChannels = 508;

void AddSounds(CLI::App& command, PlayRequest& values)
{
    command.add_option("FILE", values.paths, "Sound files and definitions; - is a sound from standard input")
        ->required();
    command.add_option("--root", values.root,
        "Folder that the names in definitions are relative to, and in which sounds that are not found "
        "otherwise are looked up");
    command
        .add_option(
            "--at", values.position, "Position of the sounds; the listener is at 0,0,0 and looks along -z")
        ->type_name("X,Y,Z")
        ->delimiter(',')
        ->check(FiniteNumber())
        ->expected(3)
        ->allow_extra_args(false);
    command.add_flag("--loop", values.isLooping, "Play in a loop");
    command.add_option("--gain", values.gain, "Linear gain")
        ->check(FiniteNumber())
        ->check(CLI::Range(0.0, 1.0));
    command.add_option("--priority", values.priority, "Higher values are more important");
    command.add_option("--seconds", values.seconds, "Stop after this time")
        ->check(FiniteNumber())
        ->check(CLI::Range(0.1, 1e6));
}

void AddListener(CLI::App& command, PlayRequest& values)
{
    command.add_option("--room", values.room, "Put the listener into a room")
        ->check(CLI::IsMember(RoomNames()));
    command.add_flag(
        "--walk", values.isWalking, "Loop the sounds and move the listener past them in 10 seconds");
    command.add_flag("--watch", values.isWatching,
        "Check the definitions and play, and do both again whenever a file is saved, until interrupted");
}

void AddOutput(CLI::App& command, Host::Settings& values)
{
    command.add_option("--channels", values.channels, "Maximum number of sounds heard at once")
        ->check(CLI::Range(1, maxChannels));
    CLI::Option* const driver =
        command.add_option("--driver", values.drivers, "Output drivers to try in order, separated by commas");
    command.add_option("--render", values.renderPath, "Render to a wave file instead of playing")
        ->type_name("OUT.wav")
        ->excludes(driver);
    command.add_option("--option", values.options, "Engine option, for example \"StreamLength=500\"")
        ->type_name("KEY=VALUE")
        ->allow_extra_args(false);
}

void AddRecords(CLI::App& command, PlayRequest& values)
{
    command.add_option("--trace", values.tracePath, "Record the sounds as trace events, for Perfetto")
        ->type_name("OUT.json");
    command.add_option("--timeline", values.timelinePath, "Record the sounds as an HTML page")
        ->type_name("OUT.html");
}

// The messages of --verbose and of `check` would be printed over the screen.
void AddScreen(CLI::App& command, PlayRequest& values)
{
    command
        .add_flag("--top", values.isOnScreen,
            "Show a live table of which sounds are heard, which are not and why; keys sort and filter it")
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
