#include "tools/harmonet/Arguments.h"
#include "tools/harmonet/Commands.h"
#include "tools/harmonet/convert/ConversionRun.h"

namespace Tool
{

namespace
{

CLI::App& AddCommand(CLI::App& program)
{
    CLI::App& command =
        *program.add_subcommand("convert", "Turn sound files of any kind into files that play.");
    command.footer(
        "Reads what libsndfile reads: WAVE of every kind, FLAC, Ogg, Opus, AIFF, MP3 and more. An .mp3 that "
        "becomes an .mp3 loses its tags and is not coded anew. A folder stands for the sounds in it and "
        "below; of these only what has changed since the last run is converted.");
    return command;
}

} // namespace

void AddConvertCommand(CLI::App& program, Action& action)
{
    const auto arguments = std::make_shared<ConversionRequest>();
    ConversionRequest& values = *arguments;
    CLI::App& command = AddCommand(program);
    command
        .add_option("IN...OUT", values.paths,
            "Sound files and folders, and as the last the file or folder that they become; - is the standard "
            "input or "
            "output")
        ->required()
        ->expected(2, CLI::detail::expected_max_vector_size);
    command
        .add_option("--format", values.format,
            "16-bit PCM, or Microsoft ADPCM, which takes about a quarter of the space; without it PCM")
        ->check(CLI::IsMember({"pcm", "adpcm"}));
    command.add_option("--rate", values.settings.rateHz, "Resample to this rate")
        ->type_name("HERTZ")
        ->check(CLI::Range(1000, 192000));
    command.add_option("--channels", values.settings.channels, "Mix to mono (1) or stereo (2)")
        ->check(CLI::Range(1, 2));
    command
        .add_option("--loudness", values.settings.loudnessLufs,
            "Bring each sound to this integrated loudness, -16 for example, with peaks up to -1 dB")
        ->type_name("LUFS")
        ->check(FiniteNumber())
        ->check(CLI::Range(-70.0, 0.0));
    command.add_flag("--all", values.isForced, "Convert also what has not changed");
    command.add_flag("--json", values.isJson, "A line of JSON for each file");
    command.callback([arguments, &action] { action = [arguments] { return RunConversions(*arguments); }; });
}

} // namespace Tool
