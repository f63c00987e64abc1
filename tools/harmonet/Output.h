#pragma once

#include "tools/harmonet/ToolError.h"

#include <nlohmann/json_fwd.hpp>

#include <string>
#include <string_view>

namespace Tool
{

// The two standard streams as the commands use them: answers go to the output, and what went wrong goes to
// the error stream. Both throw a ToolError when the output takes no more.

void Print(std::string_view text);

/// A value as one line of JSON. Text that is no UTF-8, such as a file name, is mended.
void PrintJson(const nlohmann::ordered_json& value);

/// Writes out what has been kept back.
void FlushOutput();

/// The sentence for a write that the system has refused for that reason, a value of errno.
ToolError WriteError(const std::string& what, int reason);

/// What has gone wrong, as a line on the error stream, after what has been printed so far.
void Complain(const std::string& sentence);
void Warn(const std::string& sentence);

} // namespace Tool
