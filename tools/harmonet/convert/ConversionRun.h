#pragma once

#include "tools/harmonet/ExitCode.h"
#include "tools/harmonet/convert/Conversion.h"

namespace Tool
{

/// What the command line asks for.
struct ConversionRequest
{
    std::vector<std::string> paths; ///< The inputs and, as the last, the output.
    std::string format; ///< Empty, "pcm" or "adpcm".
    ConversionSettings settings; ///< Without the coding.
    bool isForced = false;
    bool isJson = false;
};

/// Converts all files, whatever becomes of each, tells what it does, and gives the exit code of the first
/// that failed. An interrupt ends it after the file at hand. Throws a ToolError when nothing can be done at
/// all.
ExitCode RunConversions(const ConversionRequest& request);

} // namespace Tool
