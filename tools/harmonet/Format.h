#pragma once

#include <string>

namespace Tool
{

/// A number as a person would write it, with up to six digits.
std::string FormatNumber(double number);

} // namespace Tool
