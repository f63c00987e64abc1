#pragma once

#include <string>
#include <vector>

namespace Quon
{
class Options;
}

namespace Tool
{

/// Sets engine options as they were given on the command line, each as Key=Value. Throws a ToolError for the
/// first that does not have this form.
void SetEngineOptions(Quon::Options& options, const std::vector<std::string>& texts);

} // namespace Tool
