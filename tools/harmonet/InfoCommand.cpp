#include "tools/harmonet/Commands.h"
#include "tools/harmonet/DefinitionInfo.h"
#include "tools/harmonet/SoundData.h"
#include "tools/harmonet/ToolError.h"

#include <cstdio>
#include <cstdlib>

namespace Tool
{

namespace
{

void PrintSound(const std::string& path)
{
    const FileArguments arguments({path});
    const auto data = OpenSoundData(arguments.GetFiles().front());
    std::printf("%s\n", path.c_str());
    std::printf("  type              %s\n", DescribeType(*data));
    std::printf("  rate              %d Hz\n", data->GetSampleFrequency());
    std::printf("  channels          %d\n", data->GetChannels());
    std::printf("  bytes per sample  %d\n", data->GetBytesPerSample());
    std::printf("  length            %s (%lu ms, %d sample frames)\n",
        DescribeTime(data->GetSoundLength()).c_str(), data->GetSoundLength(), data->GetSoundSamples());
}

/// Goes through all files, whatever becomes of each; a failure shows in the exit code.
int RunInfo(const std::vector<std::string>& paths)
{
    const DefinitionHost host;
    int exitCode = EXIT_SUCCESS;
    for (const std::string& path : paths) {
        try {
            DefinitionFile::IsDefinitionName(path) ? PrintDefinition(path) : PrintSound(path);
        }
        catch (const ToolError& error) {
            std::fflush(stdout);
            std::fprintf(stderr, "harmonet: %s\n", error.what());
            exitCode = EXIT_FAILURE;
        }
    }
    return exitCode;
}

} // namespace

void AddInfoCommand(CLI::App& program, Action& action)
{
    const auto paths = std::make_shared<std::vector<std::string>>();
    CLI::App* const command = program.add_subcommand("info", "Tell what sound files and definitions hold.");
    command->add_option("FILE", *paths, "Sound files and definitions")->required();
    command->callback([paths, &action] { action = [paths] { return RunInfo(*paths); }; });
}

} // namespace Tool
