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
    /// Whether it was found in a folder rather than named. It then need not be a sound.
    bool isFound = false;
};

struct ConversionPlan
{
    std::string folder; ///< The output folder; empty for a single file.
    std::vector<ConversionJob> jobs;
};

/// Lists the files to convert. An input folder stands for all files in it and its subfolders, which keep
/// their relative paths below the output. If the only input is a file, the output is a file too, unless it
/// ends with a slash or a folder of that name exists. Creates no folders. Throws a ToolError if two inputs
/// would become the same file, a file is both input and output, or an input is missing.
ConversionPlan PlanConversions(
    const std::vector<std::string>& inputs, const std::string& output, const ConversionSettings& settings);

} // namespace Tool
