#pragma once

#include <CLI/CLI.hpp>

namespace Tool
{

/// Adds --verbose to a subcommand: from then on the library's messages, which say why something does not open
/// or is passed over, go to the error stream.
void AddVerbose(CLI::App& command);

} // namespace Tool
