#include "tools/harmonet/Commands.h"
#include "tools/harmonet/DefinitionCheck.h"
#include "tools/harmonet/FolderFiles.h"
#include "tools/harmonet/Output.h"
#include "tools/harmonet/OutputFile.h"
#include "tools/harmonet/PathText.h"
#include "tools/harmonet/convert/ChannelMixer.h"
#include "tools/harmonet/convert/Loudness.h"
#include "tools/harmonet/convert/SoundReader.h"
#include "tools/harmonet/preview/PreviewPage.h"
#include "tools/harmonet/preview/Spectrogram.h"

#include <nlohmann/json.hpp>

#include <cmath>
#include <filesystem>
#include <fstream>

namespace Tool
{

namespace
{

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

struct PreviewArguments
{
    std::string folder;
    std::string output;
    std::string root;
};

std::unique_ptr<SoundReader> OpenOrFail(const std::string& path)
{
    std::unique_ptr<SoundReader> reader = SoundReader::Open(InputFile(path, ""));
    if (!reader) {
        throw ToolError("'" + path + "' is not a sound file of a known type", ExitCode::BadInput);
    }
    return reader;
}

Json Finite(double number)
{
    return std::isfinite(number) ? Json(number) : Json();
}

/// Measures the sound file after the definition's gain.
void Measure(const Quon::SoundDefResource& sound, const std::string& path, Json& record)
{
    const double gainDecibels = 20.0 * std::log10(static_cast<double>(sound.GetGain()));
    const Loudness loudness = MeasureLoudness(*OpenOrFail(path));
    const auto reader = OpenOrFail(path);
    ChannelMixer mono(*reader, reader->GetChannelMap(), 1);
    Spectrogram spectrogram(reader->GetRateHz());
    std::vector<float> buffer = MakeBuffer(mono);
    std::size_t frames = 0;
    while (const std::size_t got = mono.Read(buffer.data(), stageFrames)) {
        spectrogram.Add(buffer.data(), got);
        frames += got;
    }
    record["rateHz"] = reader->GetRateHz();
    record["channels"] = reader->GetChannels();
    record["seconds"] = static_cast<double>(frames) / reader->GetRateHz();
    record["lufs"] = Finite(loudness.lufs + gainDecibels);
    record["peakDecibels"] = Finite(loudness.truePeakDecibels + gainDecibels);
    record["columns"] = spectrogram.GetColumns();
}

Json Describe(const std::string& path, const PreviewArguments& arguments)
{
    Json record = {
        {"name", ToText(ToPath(path).lexically_relative(ToPath(arguments.folder)).generic_u8string())}};
    record["findings"] = Json::array();
    try {
        DefinitionFile file(path, arguments.root);
        record["findings"] = ToJson(DefinitionCheck().Run(file));
        if (!file.Load()) {
            throw ToolError("the definition does not load");
        }
        const Quon::SoundDefResource& sound = file.GetSettings();
        record["soundFile"] = std::string(sound.GetFileName().GetView());
        record["gain"] = sound.GetGain();
        record["looping"] = sound.GetLooping();
        Measure(sound, file.GetSoundPath(), record);
    }
    catch (const ToolError& error) {
        record["error"] = error.what();
    }
    return record;
}

void Write(const std::string& page, const std::string& path)
{
    OutputFile output(path);
    std::ofstream file(ToPath(output.GetPath()), std::ios::binary);
    file << page;
    file.close();
    if (!file) {
        throw ToolError("cannot write to " + output.GetShown(), ExitCode::NoOutput);
    }
    output.Commit();
}

ExitCode RunPreview(const PreviewArguments& arguments)
{
    const DefinitionHost host;
    Json records = Json::array();
    std::size_t withFindings = 0;
    for (const fs::path& file : FindFiles(ToPath(arguments.folder), "")) {
        if (!DefinitionFile::IsDefinitionName(ToText(file))) {
            continue;
        }
        records.push_back(Describe(ToText(file), arguments));
        withFindings += records.back().contains("error") || !records.back()["findings"].empty();
    }
    if (records.empty()) {
        throw ToolError("there are no definitions in '" + arguments.folder + "'", ExitCode::NoInput);
    }
    Write(MakePreviewPage("Sounds of " + arguments.folder, records), arguments.output);
    if (arguments.output != standardStream) {
        Print(std::to_string(records.size()) + " definitions, " + std::to_string(withFindings) +
            " with findings, shown in " + arguments.output + '\n');
    }
    return ExitCode::Done;
}

} // namespace

void AddPreviewCommand(CLI::App& program, Action& action)
{
    const auto arguments = std::make_shared<PreviewArguments>();
    CLI::App& command = *program.add_subcommand(
        "preview", "Write a page with the level, length, spectrogram and findings of each definition.");
    command.add_option("FOLDER", arguments->folder, "Folder of the definitions; subfolders are included")
        ->required();
    command.add_option("OUT.html", arguments->output, "The page, or - for standard output")->required();
    command.add_option("--root", arguments->root,
        "Folder that the names of sound files are relative to; by default the folder of each definition");
    command.callback([arguments, &action] { action = [arguments] { return RunPreview(*arguments); }; });
}

} // namespace Tool
