#pragma once

#include "tools/harmonet/convert/Conversion.h"

namespace Tool
{

/// One file to convert.
struct ConversionJob
{
    std::string input; ///< A path, or - for the standard input.
    std::string output; ///< A path, or - for the standard output.
    bool staysMpeg = false;
    /// Whether it was found in a folder and not named, and need not be a sound.
    bool isFound = false;
};

struct ConversionPlan
{
    std::string folder; ///< Into which the files go; empty for a single file.
    std::vector<ConversionJob> jobs;
};

/// What there is to do. A folder stands for all files in it and below, whose places below the output they
/// keep. With one input that is a file, the output is a file too unless there is a folder of that name or it
/// ends with a slash. Makes no folders yet. Throws a ToolError where two inputs would become one file, a file
/// would be written to itself, or an input is missing.
ConversionPlan PlanConversions(
    const std::vector<std::string>& inputs, const std::string& output, const ConversionSettings& settings);

} // namespace Tool
