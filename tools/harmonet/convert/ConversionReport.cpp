#include "tools/harmonet/convert/ConversionReport.h"

#include "tools/harmonet/Console.h"
#include "tools/harmonet/Format.h"
#include "tools/harmonet/Output.h"

#include <nlohmann/json.hpp>

#include <cmath>

namespace Tool
{

namespace
{

constexpr const char* clearLine = "\r\033[K";

std::string DescribeFormat(int rateHz, int channels)
{
    const std::string name = channels == 1 ? "mono"
        : channels == 2                    ? "stereo"
                                           : std::to_string(channels) + " channels";
    return std::to_string(rateHz) + " Hz " + name;
}

std::string Describe(const Conversion& done)
{
    const std::string before = DescribeFormat(done.inputRateHz, done.inputChannels);
    const std::string after = DescribeFormat(done.rateHz, done.channels);
    std::string text = before == after ? after : before + " to " + after;
    if (done.gainDecibels != 0.0) {
        text += ", " + FormatNumber(std::round(done.gainDecibels * 10.0) / 10.0) + " dB";
    }
    return text;
}

} // namespace

ConversionReport::ConversionReport(const ConversionPlan& newPlan, bool newIsJson)
    : plan(newPlan)
    , isJson(newIsJson)
    , isQuiet(newPlan.folder.empty() && newPlan.jobs.front().output == standardStream)
    , onTerminal(IsTerminal())
{
}

void ConversionReport::ShowProgress(const ConversionJob& job)
{
    ++processed;
    if (!onTerminal || isJson || isQuiet) {
        return;
    }
    Print(std::string(clearLine) + std::to_string(processed) + " of " + std::to_string(plan.jobs.size()) +
        ": " + job.input);
    FlushOutput();
}

void ConversionReport::AddDone(const ConversionJob& job, const Conversion& done)
{
    ++converted;
    for (const std::string& warning : done.warnings) {
        PrintWarning(warning);
    }
    const char* const action = done.isCopy ? "tags removed" : "converted";
    if (isJson && !isQuiet) {
        PrintJson({{"file", job.input}, {"output", job.output}, {"action", action}, {"rateHz", done.rateHz},
            {"channels", done.channels}, {"gainDecibels", done.gainDecibels}, {"warnings", done.warnings}});
    }
    else {
        Say(std::string(action) + ' ' + job.input + " to " + job.output + ": " + Describe(done));
    }
}

void ConversionReport::AddUnchanged(const ConversionJob& job)
{
    ++unchanged;
    if (isJson) {
        PrintJson({{"file", job.input}, {"output", job.output}, {"action", "unchanged"}});
    }
}

void ConversionReport::AddSkipped()
{
    ++skipped;
}

void ConversionReport::AddFailed(const ConversionJob& job, const ToolError& error)
{
    ++failed;
    if (isJson && !isQuiet) {
        PrintJson(
            {{"file", job.input}, {"error", error.what()}, {"exitCode", static_cast<int>(error.GetCode())}});
    }
    if (error.GetCode() != ExitCode::NoOutput && error.GetCode() != ExitCode::ClosedPipe) {
        PrintError(error.what());
    }
}

void ConversionReport::End()
{
    if (plan.folder.empty()) {
        return;
    }
    std::string line = std::to_string(converted) + " converted, " + std::to_string(unchanged) + " unchanged";
    if (skipped > 0) {
        line += ", " + std::to_string(skipped) + " skipped";
    }
    if (failed > 0) {
        line += ", " + std::to_string(failed) + " failed";
    }
    Say(line);
}

void ConversionReport::Say(const std::string& line)
{
    if (!isJson && !isQuiet) {
        Print((onTerminal ? clearLine : "") + line + '\n');
    }
}

} // namespace Tool
