#include "examples/effects/DrySound.h"

#include <cmath>
#include <functional>
#include <numbers>
#include <random>

namespace EffectsExample
{

namespace
{

/// Returns the value of a sound, from -1 to 1, at a time in seconds.
using Formula = std::function<double(double)>;

Pcm Render(double seconds, const Formula& formula)
{
    constexpr double fullScale = 32767.0;
    Pcm pcm(static_cast<std::size_t>(seconds * rateHz));
    for (std::size_t i = 0; i < pcm.size(); ++i) {
        pcm[i] = static_cast<std::int16_t>(std::lround(fullScale * formula(static_cast<double>(i) / rateHz)));
    }
    return pcm;
}

double Sine(double hertz, double seconds)
{
    return std::sin(2.0 * std::numbers::pi * hertz * seconds);
}

double Pluck(double seconds)
{
    constexpr double hertz = 220.0;
    double sum = 0.0;
    for (int partial = 1; partial <= 12; ++partial) {
        sum += Sine(hertz * partial, seconds) * std::exp2(-seconds * (4.0 + partial)) / partial;
    }
    return sum;
}

} // namespace

Pcm MakeDrySound()
{
    constexpr double struckAt = 0.7;
    std::mt19937 random(5);
    return Render(2.0, [&random](double at) {
        double value = 0.35 * Pluck(at);
        if (at >= struckAt) {
            const double noise = static_cast<double>(random()) / std::mt19937::max() - 0.5;
            value += 0.8 * noise * std::exp2(-(at - struckAt) / 0.02);
        }
        return value;
    });
}

Pcm MakeClick()
{
    return Render(0.2, [](double at) { return at < 0.001 ? 0.95 : 0.0; });
}

Pcm MakeTone(double amplitude)
{
    return Render(1.0, [=](double at) { return amplitude * Sine(440.0, at); });
}

} // namespace EffectsExample
