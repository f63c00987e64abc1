#include "harmonet/engine/OS.h"
#include "harmonet/files/SndFileService.h"
#include "tools/harmonet/Commands.h"
#include "tools/harmonet/EngineOptions.h"
#include "tools/harmonet/Output.h"
#include "tools/harmonet/PathText.h"
#include "tools/harmonet/SoundData.h"
#include "tools/harmonet/ToolError.h"
#include "tools/harmonet/Verbose.h"
#include "tools/harmonet/WaveWriter.h"

#include <algorithm>
#include <filesystem>

namespace Tool
{

namespace
{

constexpr int sampleFramesAtOnce = 16384;

struct DecodeArguments
{
    std::string input;
    std::string output;
    std::vector<std::string> options; ///< Engine options as Key=Value.
};

/// The header of a wave file states one format for the whole sound.
void CheckFormat(const Quon::SoundFormat& now, const Quon::SoundFormat& atStart)
{
    if (now.GetChannels() != atStart.GetChannels() ||
        now.GetSampleFrequency() != atStart.GetSampleFrequency()) {
        throw ToolError(
            "the number of channels or the rate changes within the sound, which a wave file cannot represent",
            ExitCode::BadInput);
    }
}

void CopySound(Quon::SndFile& data, WaveWriter& writer)
{
    const Quon::SoundFormat format = data;
    const int frameBytes = data.GetChannels() * data.GetBytesPerSample();
    std::vector<unsigned char> buffer(static_cast<std::size_t>(sampleFramesAtOnce * frameBytes));
    for (;;) {
        // A reader may continue after the end of the sound; what follows is not part of it.
        const int wanted = std::min(sampleFramesAtOnce, data.GetSoundSamples() - data.GetCurrentSample());
        const int given = wanted > 0 ? data.ReadSamples(buffer.data(), wanted) : 0;
        CheckFormat(data, format);
        if (given <= 0) {
            return;
        }
        writer.Write(buffer.data(), static_cast<std::size_t>(given) * static_cast<std::size_t>(frameBytes));
    }
}

void WarnIfCutOff(const Quon::SndFile& data, const std::string& shown)
{
    // The size that programs write when they stream into a pipe and do not know the length.
    constexpr unsigned long unknownBytes = 0xFFFFFFFF;
    const int stated = data.GetSoundSamples();
    if (data.GetCurrentSample() < stated && data.Size() != unknownBytes) {
        PrintWarning("'" + shown + "' is cut off: it holds " + std::to_string(data.GetCurrentSample()) +
            " of " + std::to_string(stated) + " sample frames");
    }
}

ExitCode RunDecode(const DecodeArguments& arguments)
{
    Quon::OS os;
    SetEngineOptions(*os.GetOptions(), arguments.options);
    const Quon::SndFileService service(*os.GetOptions());
    const FileArguments files({arguments.input});
    std::error_code error;
    if (std::filesystem::equivalent(ToPath(arguments.input), ToPath(arguments.output), error)) {
        throw ToolError("input and output are the same file", ExitCode::BadArguments);
    }

    const auto data = OpenSoundData(files.GetFiles().front());
    OutputFile output(arguments.output);
    WaveWriter writer(output, *data);
    CopySound(*data, writer);
    writer.Finish();
    output.Commit();
    WarnIfCutOff(*data, files.GetFiles().front().shown);
    return ExitCode::Done;
}

} // namespace

void AddDecodeCommand(CLI::App& program, Action& action)
{
    const auto arguments = std::make_shared<DecodeArguments>();
    CLI::App* const command =
        program.add_subcommand("decode", "Write the PCM of a sound file to a wave file.");
    command->add_option("FILE", arguments->input, "The sound file, or - for standard input")->required();
    command
        ->add_option("OUT.wav", arguments->output,
            "The wave file, or - for standard output; an existing file is replaced")
        ->required();
    command->add_option("--option", arguments->options, "Engine option, for example \"MpegStandard=1\"")
        ->type_name("KEY=VALUE")
        ->allow_extra_args(false);
    AddVerbose(*command);
    command->callback([arguments, &action] { action = [arguments] { return RunDecode(*arguments); }; });
}

} // namespace Tool
