#include "examples/scene/Synthesis.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <numbers>
#include <random>

namespace Scene
{

namespace
{

constexpr double fullScale = 32767.0;
constexpr double twoPi = 2.0 * std::numbers::pi;

/// Returns the value of a sound, from -1 to 1, at a time in seconds.
using Formula = std::function<double(double)>;

Pcm Render(double seconds, double amplitude, const Formula& formula)
{
    Pcm pcm(static_cast<std::size_t>(seconds * rateHz));
    for (std::size_t i = 0; i < pcm.size(); ++i) {
        const double value = std::clamp(formula(static_cast<double>(i) / rateHz), -1.0, 1.0);
        pcm[i] = static_cast<std::int16_t>(std::lround(amplitude * fullScale * value));
    }
    return pcm;
}

double Sine(double hertz, double seconds)
{
    return std::sin(twoPi * hertz * seconds);
}

/// A stroke at time 0 that decays.
double Ring(double hertz, double halfLife, double seconds)
{
    return seconds < 0.0 ? 0.0 : Sine(hertz, seconds) * std::exp2(-seconds / halfLife);
}

/// Strokes at equal intervals.
Formula Beat(double everySeconds, double hertz, double halfLife)
{
    return [=](double seconds) { return Ring(hertz, halfLife, std::fmod(seconds, everySeconds)); };
}

/// Noise through a simple low-pass filter, as a seamless loop.
Pcm Rush(double seconds, double amplitude, double smoothness, unsigned int seed)
{
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> white(-1.0, 1.0);
    std::vector<double> noise(static_cast<std::size_t>(seconds * rateHz));
    std::ranges::generate(noise, [&] { return white(random); });
    // In the second pass the filter starts in the state in which it ends, so that the loop is seamless.
    double level = 0.0;
    for (int pass = 0; pass < 2; ++pass) {
        for (double& value : noise) {
            level += (1.0 - smoothness) * (value - level);
            value = pass == 0 ? value : level;
        }
    }
    const double peak = std::abs(std::ranges::max(noise, {}, [](double value) { return std::abs(value); }));
    Pcm pcm(noise.size());
    std::ranges::transform(noise, pcm.begin(), [=](double value) {
        return static_cast<std::int16_t>(std::lround(amplitude * fullScale * value / peak));
    });
    return pcm;
}

/// A pad of three notes that swell, each with a whole number of periods.
Pcm Chord(double seconds, const std::array<double, 3>& hertz)
{
    return Render(seconds, 0.6, [=](double at) {
        double sum = 0.0;
        for (std::size_t i = 0; i < hertz.size(); ++i) {
            sum += Sine(hertz[i], at) * (0.7 + 0.3 * Sine(0.25 * static_cast<double>(i + 1), at));
        }
        return sum / 3.0;
    });
}

/// A voice: a buzz through two resonances.
Formula Shout(double hertz)
{
    return [=](double seconds) {
        const double cycle = std::fmod(seconds * hertz, 1.0) / hertz;
        const double voice = Ring(650.0, 0.004, cycle) + 0.6 * Ring(1100.0, 0.003, cycle);
        const double envelope = std::min(1.0, seconds / 0.05) * std::exp2(-seconds / 0.4);
        return 0.6 * voice * envelope;
    };
}

} // namespace

std::vector<MadeSound> MakeSounds()
{
    const Formula cricket = [](double at) { return Sine(4200.0, at) * std::max(0.0, Sine(20.0, at)); };
    const Formula bees = [](double at) {
        return 0.5 * Sine(180.0, at) + 0.5 * Sine(183.0, at) * Sine(1.0, at);
    };
    const Formula hen = [](double at) { return Shout(420.0)(std::fmod(at, 0.75)); };
    const Formula drop = [](double at) { return Ring(900.0 + 900.0 * at, 0.08, at); };
    const Formula clank = [](double at) {
        return 0.5 * Ring(1730.0, 0.12, at) + 0.5 * Ring(2411.0, 0.08, at);
    };
    const Formula whistle = [](double at) {
        return Sine(1500.0 + 50.0 * at, at) * std::min(1.0, 4.0 * (2.5 - at));
    };
    return {
        {"fountain.wav", Rush(3.0, 0.5, 0.6, 1)},
        {"river.wav", Rush(4.0, 0.6, 0.9, 2)},
        {"flag.wav", Rush(1.0, 0.5, 0.97, 3)},
        {"crickets.wav", Render(2.0, 0.3, cricket)},
        {"bees.wav", Render(2.0, 0.4, bees)},
        {"forge.wav", Render(2.4, 0.7, Beat(0.8, 1320.0, 0.15))},
        {"pump.wav", Render(3.0, 0.6, Beat(1.5, 95.0, 0.3))},
        {"drummer.wav", Render(2.0, 0.7, Beat(0.25, 140.0, 0.06))},
        {"hens.wav", Render(3.0, 0.4, hen)},
        {"shout.wav", Render(1.2, 0.8, Shout(160.0))},
        {"shout2.wav", Render(1.0, 0.8, Shout(195.0))},
        {"shout3.wav", Render(1.4, 0.8, Shout(128.0))},
        {"drop.wav", Render(0.6, 0.6, drop)},
        {"clank.wav", Render(0.9, 0.7, clank)},
        {"whistle.wav", Render(2.5, 0.3, whistle)},
        {"morning.wav", Chord(8.0, {220.0, 277.0, 330.0})},
        {"evening.wav", Chord(8.0, {165.0, 196.0, 247.0})},
    };
}

} // namespace Scene
