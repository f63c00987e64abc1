#pragma once

#include "tools/harmonet/ExitCode.h"

#include <CLI/CLI.hpp>

#include <functional>

namespace Tool
{

/// Runs a subcommand after the arguments have been parsed. May throw a ToolError.
using Action = std::function<ExitCode()>;

// Each function adds its subcommand and the options to the program. If that subcommand is on the command
// line, parsing stores in `action` how to run it.

void AddPlayCommand(CLI::App& program, Action& action);
void AddInfoCommand(CLI::App& program, Action& action);
void AddDecodeCommand(CLI::App& program, Action& action);
void AddCheckCommand(CLI::App& program, Action& action);
void AddConvertCommand(CLI::App& program, Action& action);
void AddPreviewCommand(CLI::App& program, Action& action);
void AddGenerateCommand(CLI::App& program, Action& action);

} // namespace Tool
