#pragma once

#include "tools/harmonet/DefinitionFile.h"

#include <nlohmann/json_fwd.hpp>

namespace Tool
{

/// Prints the settings of a definition as a sound would get them. Throws a ToolError if it does not load.
/// Needs a DefinitionHost.
void PrintDefinition(const std::string& path);
/// The same as JSON.
nlohmann::ordered_json DescribeDefinition(const std::string& path);

} // namespace Tool
