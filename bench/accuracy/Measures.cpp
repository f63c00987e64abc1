#include "bench/accuracy/Measures.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace Accuracy
{

double GetAmplitude(const std::vector<double>& heard, double hz, int rateHz)
{
    // The middle half, where nothing begins or ends.
    const std::size_t begin = heard.size() / 4;
    const std::size_t count = heard.size() / 2;
    double real = 0.0;
    double imaginary = 0.0;
    double weights = 0.0;
    for (std::size_t i = 0; i < count; ++i) {
        const double turn = 2.0 * std::numbers::pi * static_cast<double>(i) / static_cast<double>(count);
        const double weight = std::pow(0.5 - 0.5 * std::cos(turn), 3);
        const double phase = 2.0 * std::numbers::pi * hz * static_cast<double>(i) / rateHz;
        real += weight * heard[begin + i] * std::cos(phase);
        imaginary += weight * heard[begin + i] * std::sin(phase);
        weights += weight;
    }
    return 2.0 * std::hypot(real, imaginary) / weights;
}

double GetDistortion(const std::vector<double>& heard, double hz, int rateHz)
{
    const std::size_t begin = heard.size() / 4;
    const std::size_t end = begin + heard.size() / 2;
    double ss = 0.0, cc = 0.0, sc = 0.0, xs = 0.0, xc = 0.0;
    const auto at = [&](std::size_t i) {
        const double phase = 2.0 * std::numbers::pi * hz * static_cast<double>(i) / rateHz;
        return std::pair(std::sin(phase), std::cos(phase));
    };
    for (std::size_t i = begin; i < end; ++i) {
        const auto [s, c] = at(i);
        ss += s * s;
        cc += c * c;
        sc += s * c;
        xs += heard[i] * s;
        xc += heard[i] * c;
    }
    const double a = (xs * cc - xc * sc) / (ss * cc - sc * sc);
    const double b = (xc * ss - xs * sc) / (ss * cc - sc * sc);
    double rest = 0.0;
    for (std::size_t i = begin; i < end; ++i) {
        const auto [s, c] = at(i);
        rest += std::pow(heard[i] - a * s - b * c, 2);
    }
    return 10.0 * std::log10(rest / static_cast<double>(end - begin) / ((a * a + b * b) / 2.0));
}

double GetLevel(const std::vector<double>& heard, std::size_t begin, std::size_t end)
{
    double sum = 0.0;
    for (std::size_t i = begin; i < end; ++i) {
        sum += heard[i] * heard[i];
    }
    return std::sqrt(sum / static_cast<double>(end - begin));
}

double FindPeak(const std::vector<double>& heard, std::size_t begin, std::size_t end)
{
    std::size_t peak = begin + 1;
    for (std::size_t i = begin + 1; i + 1 < end; ++i) {
        peak = heard[i] > heard[peak] ? i : peak;
    }
    const double before = heard[peak - 1];
    const double after = heard[peak + 1];
    const double bend = before - 2.0 * heard[peak] + after;
    return static_cast<double>(peak) + (bend < 0.0 ? 0.5 * (before - after) / bend : 0.0);
}

std::vector<double> FilterOctave(std::vector<double> heard, double hz, int rateHz)
{
    const double turn = 2.0 * std::numbers::pi * hz / rateHz;
    const double alpha = std::sin(turn) / (2.0 * std::numbers::sqrt2);
    double x1 = 0.0, x2 = 0.0, y1 = 0.0, y2 = 0.0;
    for (double& sample : heard) {
        const double y =
            (alpha * (sample - x2) + 2.0 * std::cos(turn) * y1 - (1.0 - alpha) * y2) / (1.0 + alpha);
        x2 = x1;
        x1 = sample;
        y2 = y1;
        y1 = y;
        sample = y;
    }
    return heard;
}

double ToDecibels(double factor)
{
    return 20.0 * std::log10(std::max(factor, 1e-10));
}

} // namespace Accuracy
