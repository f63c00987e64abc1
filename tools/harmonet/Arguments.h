#pragma once

#include <CLI/CLI.hpp>

namespace Tool
{

/// For options that take a number: rejects NaN and values outside the range of a float, which range checks
/// accept.
CLI::Validator FiniteNumber();

/// Returns the error message for invalid arguments. Suggests the word that was probably meant.
std::string ExplainArguments(
    const CLI::App& program, const CLI::ParseError& error, const std::vector<std::string>& arguments);

} // namespace Tool
