#pragma once

#include <CLI/CLI.hpp>

#include <string>
#include <vector>

namespace Tool
{

std::vector<const CLI::App*> CommandsOf(const CLI::App& program);
/// With those of a name, --help among them, or those that are known by their place.
std::vector<const CLI::Option*> NamedOptionsOf(const CLI::App& command);
std::vector<const CLI::Option*> PositionalsOf(const CLI::App& command);

/// The names of an option, as "-h,--help".
std::string NamesOf(const CLI::Option& option);
bool TakesValue(const CLI::Option& option);
/// What kind of value it takes, such as "X,Y,Z".
std::string ValueNameOf(const CLI::Option& option);
/// The words that it takes, or none.
std::vector<std::string> ChoicesOf(const CLI::Option& option);

/// The texts with the separator between them.
std::string Join(const std::vector<std::string>& texts, const std::string& separator);

} // namespace Tool
