#include "examples/effects/Decay.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace EffectsExample
{

namespace
{

// Applies a second-order band-pass filter with a gain of 1 at its centre to the sound, in place.
void FilterBand(std::vector<double>& sound, int rateHz, double centreHz)
{
    const double octaveQuality = std::numbers::sqrt2;
    const double angle = 2.0 * std::numbers::pi * centreHz / rateHz;
    const double alpha = std::sin(angle) / (2.0 * octaveQuality);
    const double gain = alpha / (1.0 + alpha);
    const double a1 = -2.0 * std::cos(angle) / (1.0 + alpha);
    const double a2 = (1.0 - alpha) / (1.0 + alpha);
    double in1 = 0.0, in2 = 0.0, out1 = 0.0, out2 = 0.0;
    for (double& sample : sound) {
        const double out = gain * (sample - in2) - a1 * out1 - a2 * out2;
        in2 = in1;
        in1 = sample;
        out2 = out1;
        out1 = out;
        sample = out;
    }
}

} // namespace

std::vector<double> FilterOctave(std::span<const double> sound, int rateHz, double centreHz)
{
    std::vector<double> band(sound.begin(), sound.end());
    FilterBand(band, rateHz, centreHz);
    FilterBand(band, rateHz, centreHz);
    return band;
}

double MeasureDecay(std::span<const double> sound, int rateHz, double centreHz)
{
    std::vector<double> toCome = FilterOctave(sound, rateHz, centreHz);
    const auto loudest = std::max_element(toCome.begin(), toCome.end(),
        [](double one, double other) { return std::abs(one) < std::abs(other); });
    toCome.erase(toCome.begin(), loudest);
    double power = 0.0;
    for (auto sample = toCome.rbegin(); sample != toCome.rend(); ++sample) {
        power += *sample * *sample;
        *sample = power;
    }
    const auto findFall = [&](double decibels) {
        const double level = power * std::pow(10.0, -decibels / 10.0);
        return std::find_if(toCome.begin(), toCome.end(), [&](double left) { return left <= level; });
    };
    const auto begin = findFall(10.0);
    const auto end = findFall(40.0);
    if (power == 0.0 || end == toCome.end()) {
        return 0.0;
    }
    return 2.0 * static_cast<double>(end - begin) / rateHz;
}

} // namespace EffectsExample
