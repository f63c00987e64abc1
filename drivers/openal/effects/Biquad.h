#pragma once

#include "drivers/openal/effects/Effect.h"

#include <array>
#include <cstddef>

namespace Quon
{

/// The normalised coefficients of a second-order filter: y = b0 x + b1 x' + b2 x'' - a1 y' - a2 y''.
///
/// The formulas are those of Robert Bristow-Johnson's "Cookbook formulae for audio equalizer biquad filter
/// coefficients". Frequencies must be above 0 and below half the rate.
struct BiquadFactors
{
    double b0, b1, b2, a1, a2;

    /// 12 dB per octave above the cutoff, flat below, -3 dB at it.
    static BiquadFactors MakeLowPass(double cutoffHz, int rateHz);

    /// 0 dB at the centre, -3 dB at the edges of the band.
    static BiquadFactors MakeBandPass(double centerHz, double bandwidthHz, int rateHz);

    /// `gainDecibels` at the centre, half of that at the band edges, 0 dB far away.
    static BiquadFactors MakePeak(double centerHz, double bandwidthOctaves, double gainDecibels, int rateHz);

    /// 0 dB far below the corner, half of `gainDecibels` at it and the full gain far above.
    static BiquadFactors MakeHighShelf(double cornerHz, double gainDecibels, int rateHz);

    /// The square of the gain at one frequency.
    double GetPowerGain(double frequencyHz, int rateHz) const;
};

/// A second-order filter for one or two channels. A plain value.
class Biquad
{
public:
    explicit Biquad(const BiquadFactors& newFactors)
        : factors(newFactors)
    {
    }

    // In double: for a low frequency at a high rate, float is not precise enough.
    float Filter(std::size_t channel, float sample)
    {
        Memory& memory = memories[channel];
        const double x = sample;
        const double y = factors.b0 * x + memory.near;
        memory.near = (factors.b1 * x + memory.far) - factors.a1 * y;
        memory.far = factors.b2 * x - factors.a2 * y;
        return static_cast<float>(y);
    }

    void Reset() { memories = {}; }

private:
    /// The contributions of earlier samples to the next two.
    struct Memory
    {
        double near = 0.0;
        double far = 0.0;
    };

    BiquadFactors factors;
    std::array<Memory, Effect::maxChannels> memories;
};

} // namespace Quon
