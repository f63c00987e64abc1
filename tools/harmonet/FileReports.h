#pragma once

#include "tools/harmonet/Output.h"

#include <functional>
#include <string>
#include <vector>

namespace Tool
{

/// Runs `report` for each file, whatever becomes of the others. A ToolError goes to the error stream, and
/// with `isJson` to the output too, as an object with "file", "error" and "exitCode". Gives the exit code of
/// the first file that has one other than Done. What the output refuses ends it at once, with a ToolError.
ExitCode ForEachFile(const std::vector<std::string>& paths, bool isJson,
    const std::function<ExitCode(const std::string& path)>& report);

} // namespace Tool
