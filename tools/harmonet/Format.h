#pragma once

#include <string>

namespace Tool
{

/// A number as a person would write it, with up to six digits.
std::string FormatNumber(double number);

/// What is wrong with a file that did not open, as the end of a sentence; `openCode` is that of File::Open().
std::string FormatOpenCode(int openCode);

} // namespace Tool
