#pragma once

#include "tools/harmonet/DefinitionFile.h"

#include <nlohmann/json_fwd.hpp>

namespace Tool
{

/// Prints the settings that a sound gets from a definition. Throws a ToolError if it does not load. Needs a
/// DefinitionHost.
void PrintDefinition(const std::string& path);
/// Returns the same as JSON.
nlohmann::ordered_json DescribeDefinition(const std::string& path);

} // namespace Tool
