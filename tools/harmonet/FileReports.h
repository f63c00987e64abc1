#pragma once

#include "tools/harmonet/Output.h"

#include <functional>
#include <string>
#include <vector>

namespace Tool
{

/// Runs `report` for each file, even if others fail. A ToolError is printed to standard error and, with
/// `isJson`, also to standard output as an object with "file", "error" and "exitCode". Returns the first exit
/// code other than Done. If the output itself fails, throws a ToolError immediately.
ExitCode ForEachFile(const std::vector<std::string>& paths, bool isJson,
    const std::function<ExitCode(const std::string& path)>& report);

} // namespace Tool
