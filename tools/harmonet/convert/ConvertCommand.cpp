#include "tools/harmonet/Arguments.h"
#include "tools/harmonet/Commands.h"
#include "tools/harmonet/convert/ConversionRun.h"

namespace Tool
{

namespace
{

CLI::App& AddCommand(CLI::App& program)
{
    CLI::App& command = *program.add_subcommand(
        "convert", "Convert sound files of any type to files that the library plays.");
    command.footer(
        "Reads all formats of libsndfile: every kind of WAVE, FLAC, Ogg, Opus, AIFF, MP3 and more. "
        "An .mp3 that becomes an .mp3 loses its tags and is not re-encoded. A folder stands for all sounds "
        "in it and its subfolders; only those that have changed since the last run are converted.");
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
            "Sound files and folders, and last the output file or folder; - is standard input or output")
        ->required()
        ->expected(2, CLI::detail::expected_max_vector_size);
    command
        .add_option("--format", values.format,
            "16-bit PCM, or Microsoft ADPCM, which is about a quarter of the size; the default is PCM")
        ->check(CLI::IsMember({"pcm", "adpcm"}));
    command.add_option("--rate", values.settings.rateHz, "Resample to this rate")
        ->type_name("HERTZ")
        ->check(CLI::Range(1000, 192000));
    command.add_option("--channels", values.settings.channels, "Mix to mono (1) or stereo (2)")
        ->check(CLI::Range(1, 2));
    command
        .add_option("--loudness", values.settings.loudnessLufs,
            "Bring each sound to this integrated loudness, for example -16, with true peaks of at most -1 dB")
        ->type_name("LUFS")
        ->check(FiniteNumber())
        ->check(CLI::Range(-70.0, 0.0));
    command.add_flag("--all", values.isForced, "Also convert files that have not changed");
    command.add_flag("--json", values.isJson, "Print one line of JSON for each file");
    command.callback([arguments, &action] { action = [arguments] { return RunConversions(*arguments); }; });
}

} // namespace Tool
