#pragma once

#include <CLI/CLI.hpp>

#include <string>

namespace Tool
{

// What a package has beside a program, made from the same descriptions as its help.

/// The manual page, for man's macros.
std::string MakeManPage(const CLI::App& program, const std::string& version);
/// Scripts that complete commands, options and those of their values that are words.
std::string MakeBashCompletion(const CLI::App& program);
std::string MakeZshCompletion(const CLI::App& program);

} // namespace Tool
