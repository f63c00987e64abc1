#include "bench/accuracy/Rows.h"

#include <cmath>
#include <cstdio>
#include <numbers>

namespace Accuracy
{

void PrintRow(const std::string& what, double expected, double rendered, const std::string& unit, int digits)
{
    std::printf("| %s | %.*f %s | %.*f %s | %.*f |\n", what.c_str(), digits, expected, unit.c_str(), digits,
        rendered, unit.c_str(), digits, rendered - expected);
    std::fflush(stdout);
}

void PrintLimit(const std::string& what, double limit, double rendered, const std::string& unit)
{
    std::printf(
        "| %s | below %g %s | %.2f %s | – |\n", what.c_str(), limit, unit.c_str(), rendered, unit.c_str());
    std::fflush(stdout);
}

Formula Tone(double hz, int rateHz, double amplitude)
{
    return [=](int i) { return amplitude * std::sin(2.0 * std::numbers::pi * hz * i / rateHz); };
}

Formula Bump(int place, double width)
{
    return [=](int i) { return 0.8 * std::exp(-std::pow((i - place) / width, 2)); };
}

} // namespace Accuracy
