#include "tools/harmonet/Format.h"

#include <array>
#include <cstdio>

namespace Tool
{

std::string FormatNumber(double number)
{
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.6g", number);
    return text.data();
}

} // namespace Tool
