#include "tools/harmonet/convert/ConversionPlan.h"

#include "tools/harmonet/FolderFiles.h"
#include "tools/harmonet/PathText.h"
#include "tools/harmonet/ToolError.h"

#include <filesystem>
#include <map>

namespace Tool
{

namespace
{

namespace fs = std::filesystem;

ConversionJob MakeJob(
    const std::string& input, const fs::path& output, const ConversionSettings& settings, bool isFound)
{
    ConversionJob job;
    job.input = input;
    job.staysMpeg = StaysMpeg(input, settings);
    job.output = ToText(fs::path(output).replace_extension(job.staysMpeg ? ".mp3" : ".wav"));
    job.isFound = isFound;
    return job;
}

void AddInput(const std::string& input, const ConversionSettings& settings, ConversionPlan& plan)
{
    const fs::path folder = ToPath(plan.folder);
    const fs::path path = ToPath(input);
    if (!IsFolder(path)) {
        const fs::path name = input == standardStream ? "stdin" : path.filename();
        plan.jobs.push_back(MakeJob(input, folder / name, settings, false));
        return;
    }
    for (const fs::path& file : FindFiles(path, folder)) {
        plan.jobs.push_back(MakeJob(ToText(file), folder / file.lexically_relative(path), settings, true));
    }
}

void CheckOutputs(const ConversionPlan& plan)
{
    std::map<fs::path, std::string> inputs;
    for (const ConversionJob& job : plan.jobs) {
        const auto [place, isFirst] = inputs.emplace(ToPath(job.output).lexically_normal(), job.input);
        if (!isFirst) {
            throw ToolError(
                "'" + place->second + "' and '" + job.input + "' would both become '" + job.output + "'",
                ExitCode::BadArguments);
        }
        std::error_code ignored;
        if (fs::equivalent(ToPath(job.input), ToPath(job.output), ignored)) {
            throw ToolError("'" + job.input + "' is both input and output", ExitCode::BadArguments);
        }
    }
}

ConversionJob MakeSingleJob(
    const std::string& input, const std::string& output, const ConversionSettings& settings)
{
    ConversionJob job{input, output, false, false};
    job.staysMpeg = output == standardStream ? StaysMpeg(input, settings) : StaysMpeg(output, settings);
    if (!job.staysMpeg && StaysMpeg(output, {})) {
        throw ToolError("encoding to MPEG is not supported; write a .wav instead", ExitCode::BadArguments);
    }
    return job;
}

} // namespace

ConversionPlan PlanConversions(
    const std::vector<std::string>& inputs, const std::string& output, const ConversionSettings& settings)
{
    ConversionPlan plan;
    const bool isIntoFolder = inputs.size() > 1 || IsFolder(ToPath(inputs.front())) ||
        IsFolder(ToPath(output)) || output.ends_with('/') ||
        output.ends_with(static_cast<char>(fs::path::preferred_separator));
    if (isIntoFolder) {
        if (output == standardStream) {
            throw ToolError("several inputs need an output folder", ExitCode::BadArguments);
        }
        plan.folder = output;
        for (const std::string& input : inputs) {
            AddInput(input, settings, plan);
        }
    }
    else {
        plan.jobs.push_back(MakeSingleJob(inputs.front(), output, settings));
    }
    CheckOutputs(plan);
    return plan;
}

} // namespace Tool
