#pragma once

#include "drivers/openal/effects/Effect.h"

#include <cmath>
#include <complex>
#include <vector>

/// Signals to send through effects, and measures of what comes out.

namespace Quon::Testing
{

using Pcm = std::vector<float>;

Pcm MakeSilence(std::size_t sampleFrames, int channels = 1);

/// One sample of `level` and silence behind it.
Pcm MakeImpulse(std::size_t sampleFrames, float level = 1.0f);

Pcm MakeSine(double frequencyHz, float amplitude, int rateHz, std::size_t sampleFrames);

/// Full-band noise of even distribution, the same for the same seed.
Pcm MakeNoise(std::size_t sampleFrames, float amplitude, unsigned int seed = 1);

/// A signal on both sides, interleaved.
Pcm MakeStereo(const Pcm& left, const Pcm& right);
Pcm TakeSide(const Pcm& stereo, int side);

/// What comes out of an effect, or of whatever processes PCM, given all at once.
template<class Processor>
Pcm Through(Processor&& processor, Pcm pcm)
{
    processor.Process(pcm);
    return pcm;
}

/// The part of a frequency in a signal of which it fits in a whole number of periods: half the amplitude of a
/// sine, turned by its phase.
std::complex<double> GetSpectrum(const Pcm& pcm, double frequencyHz, int rateHz);

/// The amplitude of that sine.
double GetAmplitude(const Pcm& pcm, double frequencyHz, int rateHz);

double GetPower(const Pcm& pcm);

double ToDecibels(double factor);

} // namespace Quon::Testing
