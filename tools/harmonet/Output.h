#pragma once

#include "tools/harmonet/ToolError.h"

#include <nlohmann/json_fwd.hpp>

#include <string>
#include <string_view>

namespace Tool
{

// The two standard streams as the commands use them: results go to standard output, errors and warnings to
// standard error. Print(), PrintJson() and FlushOutput() throw a ToolError when standard output fails.

void Print(std::string_view text);

/// Prints a value as one line of JSON. Invalid UTF-8, for example in a file name, is replaced.
void PrintJson(const nlohmann::ordered_json& value);

/// Writes out buffered text.
void FlushOutput();

/// Returns the error for a write that failed. `reason` is a value of errno.
ToolError WriteError(const std::string& what, int reason);

/// Flushes standard output and prints the sentence as a line on standard error.
void PrintError(const std::string& sentence);
void PrintWarning(const std::string& sentence);

} // namespace Tool
