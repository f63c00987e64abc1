#pragma once

#include "tools/harmonet/ExitCode.h"
#include "tools/harmonet/convert/Conversion.h"

namespace Tool
{

/// The arguments of `convert`.
struct ConversionRequest
{
    std::vector<std::string> paths; ///< The inputs, then the output.
    std::string format; ///< Empty, "pcm" or "adpcm".
    ConversionSettings settings; ///< Without the coding, which comes from `format`.
    bool isForced = false;
    bool isJson = false;
};

/// Converts all files, even if some fail, reports the results, and returns the exit code of the first
/// failure. An interrupt ends the run after the current file. Throws a ToolError if no conversion is
/// possible.
ExitCode RunConversions(const ConversionRequest& request);

} // namespace Tool
