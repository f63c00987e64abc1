#include "tools/harmonet/Commands.h"
#include "tools/harmonet/DefinitionInfo.h"
#include "tools/harmonet/FileReports.h"
#include "tools/harmonet/SoundData.h"
#include "tools/harmonet/Verbose.h"

#include <nlohmann/json.hpp>

namespace Tool
{

namespace
{

struct InfoArguments
{
    std::vector<std::string> paths;
    bool isJson = false;
};

void PrintSound(const std::string& path)
{
    const FileArguments arguments({path});
    const auto data = OpenSoundData(arguments.GetFiles().front());
    const std::string length = DescribeTime(data->GetSoundLength()) + " (" +
        std::to_string(data->GetSoundLength()) + " ms, " + std::to_string(data->GetSoundSamples()) +
        " sample frames)";
    Print(path + '\n');
    Print(std::string("  type              ") + DescribeType(*data) + '\n');
    Print("  rate              " + std::to_string(data->GetSampleFrequency()) + " Hz\n");
    Print("  channels          " + std::to_string(data->GetChannels()) + '\n');
    Print("  bytes per sample  " + std::to_string(data->GetBytesPerSample()) + '\n');
    Print("  length            " + length + '\n');
}

nlohmann::ordered_json DescribeSound(const std::string& path)
{
    const FileArguments arguments({path});
    const auto data = OpenSoundData(arguments.GetFiles().front());
    return {{"file", path}, {"type", DescribeType(*data)}, {"rateHz", data->GetSampleFrequency()},
        {"channels", data->GetChannels()}, {"bytesPerSample", data->GetBytesPerSample()},
        {"lengthMs", data->GetSoundLength()}, {"sampleFrames", data->GetSoundSamples()}};
}

void Show(const std::string& path, bool isJson)
{
    const bool isDefinition = DefinitionFile::IsDefinitionName(path);
    if (isJson) {
        PrintJson(isDefinition ? DescribeDefinition(path) : DescribeSound(path));
    }
    else {
        isDefinition ? PrintDefinition(path) : PrintSound(path);
    }
}

ExitCode RunInfo(const InfoArguments& arguments)
{
    const DefinitionHost host;
    return ForEachFile(arguments.paths, arguments.isJson, [&](const std::string& path) {
        Show(path, arguments.isJson);
        return ExitCode::Done;
    });
}

} // namespace

void AddInfoCommand(CLI::App& program, Action& action)
{
    const auto arguments = std::make_shared<InfoArguments>();
    CLI::App* const command = program.add_subcommand("info", "Describe sound files and definitions.");
    command
        ->add_option(
            "FILE", arguments->paths, "Sound files and definitions; - is a sound from standard input")
        ->required();
    command->add_flag("--json", arguments->isJson, "Print one line of JSON for each file");
    AddVerbose(*command);
    command->callback([arguments, &action] { action = [arguments] { return RunInfo(*arguments); }; });
}

} // namespace Tool
