#include "tools/harmonet/convert/ConversionRun.h"

#include "tools/harmonet/Interrupt.h"
#include "tools/harmonet/PathText.h"
#include "tools/harmonet/convert/ConversionRecord.h"
#include "tools/harmonet/convert/ConversionReport.h"

#include <filesystem>

namespace Tool
{

namespace
{

namespace fs = std::filesystem;

void MakeFolder(const std::string& output)
{
    std::error_code error;
    const fs::path folder = ToPath(output).parent_path();
    if (!folder.empty()) {
        fs::create_directories(folder, error);
    }
    if (error) {
        throw ToolError(
            "cannot create the folder '" + ToText(folder) + "': " + error.message(), ExitCode::NoOutput);
    }
}

/// Converts one file and reports the result. Returns false if it is not a sound.
bool RunJob(const ConversionJob& job, const ConversionSettings& settings, ConversionReport& report)
{
    const InputFile input(job.input, "stdin");
    OutputFile output(job.output);
    const Conversion done = Convert(input, settings, job.staysMpeg, output);
    if (done.isSound) {
        output.Commit();
    }
    else if (!job.isFound) {
        throw ToolError("'" + job.input + "' is not a sound file of a known type", ExitCode::BadInput);
    }
    done.isSound ? report.AddDone(job, done) : report.AddSkipped();
    return done.isSound;
}

class Run
{
public:
    Run(const ConversionPlan& newPlan, const ConversionSettings& newSettings,
        const ConversionRequest& newRequest)
        : plan(newPlan)
        , settings(newSettings)
        , request(newRequest)
        , record(newPlan.folder, newSettings)
        , report(newPlan, newRequest.isJson)
    {
    }

    ExitCode Go()
    {
        CatchInterrupt();
        for (const ConversionJob& job : plan.jobs) {
            if (IsInterrupted()) {
                break;
            }
            report.ShowProgress(job);
            Do(job);
        }
        if (!plan.folder.empty()) {
            record.Save();
        }
        report.End();
        return code;
    }

private:
    void Do(const ConversionJob& job)
    {
        if (!request.isForced && record.IsUpToDate(job)) {
            report.AddUnchanged(job);
            return;
        }
        try {
            // Files keep their relative paths.
            if (!plan.folder.empty()) {
                MakeFolder(job.output);
            }
            if (RunJob(job, settings, report)) {
                record.SetDone(job);
            }
        }
        catch (const ToolError& error) {
            report.AddFailed(job, error);
            if (code == ExitCode::Done) {
                code = error.GetCode();
            }
            // The next file would fail in the same way.
            if (error.GetCode() == ExitCode::NoOutput || error.GetCode() == ExitCode::ClosedPipe) {
                throw;
            }
        }
    }

    const ConversionPlan& plan;
    const ConversionSettings& settings;
    const ConversionRequest& request;
    ConversionRecord record;
    ConversionReport report;
    ExitCode code = ExitCode::Done;
};

} // namespace

ExitCode RunConversions(const ConversionRequest& request)
{
    ConversionSettings settings = request.settings;
    if (!request.format.empty()) {
        settings.coding = request.format == "adpcm" ? WaveCoding::MsAdpcm : WaveCoding::Pcm16;
    }
    const ConversionPlan plan =
        PlanConversions({request.paths.begin(), request.paths.end() - 1}, request.paths.back(), settings);
    return Run(plan, settings, request).Go();
}

} // namespace Tool
