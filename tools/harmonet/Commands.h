#pragma once

#include "tools/harmonet/ExitCode.h"

#include <CLI/CLI.hpp>

#include <functional>

namespace Tool
{

/// What a subcommand does once the arguments are known. May throw a ToolError.
using Action = std::function<ExitCode()>;

// Each adds its subcommand with its options to the program, and stores what it does in `action` when it is
// the one that was asked for.

void AddPlayCommand(CLI::App& program, Action& action);
void AddInfoCommand(CLI::App& program, Action& action);
void AddDecodeCommand(CLI::App& program, Action& action);
void AddCheckCommand(CLI::App& program, Action& action);
void AddConvertCommand(CLI::App& program, Action& action);
void AddPreviewCommand(CLI::App& program, Action& action);
void AddGenerateCommand(CLI::App& program, Action& action);

} // namespace Tool
