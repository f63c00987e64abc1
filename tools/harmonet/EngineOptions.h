#pragma once

#include <string>
#include <vector>

namespace Quon
{
class Options;
}

namespace Tool
{

/// Sets engine options from the command line, each in the form Key=Value. Throws a ToolError for the first
/// text that does not have this form.
void SetEngineOptions(Quon::Options& options, const std::vector<std::string>& texts);

} // namespace Tool
