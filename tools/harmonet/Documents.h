#pragma once

#include <CLI/CLI.hpp>

#include <string>

namespace Tool
{

// Documents that a package contains in addition to the program, generated from the text of the help.

/// Returns the manual page as man macros.
std::string MakeManPage(const CLI::App& program, const std::string& version);
/// Return scripts that complete commands, options and the fixed values of options.
std::string MakeBashCompletion(const CLI::App& program);
std::string MakeZshCompletion(const CLI::App& program);

} // namespace Tool
