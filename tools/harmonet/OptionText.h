#pragma once

#include <CLI/CLI.hpp>

#include <string>
#include <vector>

namespace Tool
{

std::vector<const CLI::App*> CommandsOf(const CLI::App& program);
/// The options that have a name, including --help, or the positional ones.
std::vector<const CLI::Option*> NamedOptionsOf(const CLI::App& command);
std::vector<const CLI::Option*> PositionalsOf(const CLI::App& command);

/// Returns the names of an option, such as "-h,--help".
std::string NamesOf(const CLI::Option& option);
bool TakesValue(const CLI::Option& option);
/// Returns the type of its value, such as "X,Y,Z".
std::string ValueNameOf(const CLI::Option& option);
/// Returns the words that it accepts; empty if any value is accepted.
std::vector<std::string> ChoicesOf(const CLI::Option& option);

/// Joins the texts with the separator between them.
std::string Join(const std::vector<std::string>& texts, const std::string& separator);

} // namespace Tool
