#pragma once

#include <CLI/CLI.hpp>

namespace Tool
{

/// Adds --verbose to a subcommand. With it, the library's messages go to standard error; they say why
/// something does not open or is ignored.
void AddVerbose(CLI::App& command);

} // namespace Tool
