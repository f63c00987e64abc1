#pragma once

#include <CLI/CLI.hpp>

namespace Tool
{

/// For options that take a number: refuses NaN and what a float cannot hold, which the ranges let pass.
CLI::Validator FiniteNumber();

/// The sentence for arguments that were not understood, with the word that was probably meant.
std::string ExplainArguments(
    const CLI::App& program, const CLI::ParseError& error, const std::vector<std::string>& arguments);

} // namespace Tool
