#include "tools/harmonet/FileReports.h"

#include <nlohmann/json.hpp>

namespace Tool
{

namespace
{

bool IsOfOutput(ExitCode code)
{
    return code == ExitCode::NoOutput || code == ExitCode::ClosedPipe;
}

} // namespace

ExitCode ForEachFile(const std::vector<std::string>& paths, bool isJson,
    const std::function<ExitCode(const std::string& path)>& report)
{
    ExitCode first = ExitCode::Done;
    for (const std::string& path : paths) {
        ExitCode code = ExitCode::Done;
        try {
            code = report(path);
        }
        catch (const ToolError& error) {
            code = error.GetCode();
            if (IsOfOutput(code)) {
                throw;
            }
            if (isJson) {
                PrintJson({{"file", path}, {"error", error.what()}, {"exitCode", static_cast<int>(code)}});
            }
            PrintError(error.what());
        }
        if (first == ExitCode::Done) {
            first = code;
        }
    }
    return first;
}

} // namespace Tool
