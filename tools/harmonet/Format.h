#pragma once

#include <string>

namespace Tool
{

/// Formats a number with up to six significant digits and without trailing zeros.
std::string FormatNumber(double number);

/// Explains why a file did not open, as the end of a sentence. `openCode` is the result of File::Open().
std::string FormatOpenCode(int openCode);

} // namespace Tool
