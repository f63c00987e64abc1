#include "drivers/openal/effects/Biquad.h"

#include <cmath>
#include <complex>
#include <numbers>

namespace Quon
{

namespace
{

/// The intermediate values common to all formulas.
struct Angle
{
    Angle(double frequencyHz, int rateHz)
        : w(2.0 * std::numbers::pi * frequencyHz / rateHz)
        , cosine(std::cos(w))
        , sine(std::sin(w))
    {
    }

    double w;
    double cosine;
    double sine;
};

BiquadFactors Normalise(double b0, double b1, double b2, double a0, double a1, double a2)
{
    return {b0 / a0, b1 / a0, b2 / a0, a1 / a0, a2 / a0};
}

} // namespace

BiquadFactors BiquadFactors::MakeLowPass(double cutoffHz, int rateHz)
{
    const Angle at(cutoffHz, rateHz);
    const double alpha = at.sine / std::numbers::sqrt2;
    const double b1 = 1.0 - at.cosine;
    return Normalise(b1 / 2, b1, b1 / 2, 1 + alpha, -2 * at.cosine, 1 - alpha);
}

BiquadFactors BiquadFactors::MakeBandPass(double centerHz, double bandwidthHz, int rateHz)
{
    const Angle at(centerHz, rateHz);
    const double q = centerHz / bandwidthHz;
    const double alpha = at.sine / (2 * q);
    return Normalise(alpha, 0, -alpha, 1 + alpha, -2 * at.cosine, 1 - alpha);
}

BiquadFactors BiquadFactors::MakePeak(
    double centerHz, double bandwidthOctaves, double gainDecibels, int rateHz)
{
    const Angle at(centerHz, rateHz);
    const double a = std::pow(10.0, gainDecibels / 40);
    const double alpha = at.sine * std::sinh(std::numbers::ln2 / 2 * bandwidthOctaves * at.w / at.sine);
    return Normalise(
        1 + alpha * a, -2 * at.cosine, 1 - alpha * a, 1 + alpha / a, -2 * at.cosine, 1 - alpha / a);
}

BiquadFactors BiquadFactors::MakeHighShelf(double cornerHz, double gainDecibels, int rateHz)
{
    const Angle at(cornerHz, rateHz);
    const double a = std::pow(10.0, gainDecibels / 40);
    const double slope = 2 * std::sqrt(a) * at.sine / std::numbers::sqrt2;
    const double up = a + 1;
    const double down = a - 1;
    return Normalise(a * (up + down * at.cosine + slope), -2 * a * (down + up * at.cosine),
        a * (up + down * at.cosine - slope), up - down * at.cosine + slope, 2 * (down - up * at.cosine),
        up - down * at.cosine - slope);
}

double BiquadFactors::GetPowerGain(double frequencyHz, int rateHz) const
{
    const std::complex<double> delay = std::polar(1.0, -2.0 * std::numbers::pi * frequencyHz / rateHz);
    return std::norm((b0 + delay * (b1 + delay * b2)) / (1.0 + delay * (a1 + delay * a2)));
}

} // namespace Quon
