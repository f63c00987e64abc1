#pragma once

#include <cmath>
#include <complex>
#include <numbers>
#include <random>
#include <vector>

/// Signals to send through effects, and measures of what comes out.

namespace Quon::Testing
{

using Pcm = std::vector<float>;

/// One sample of full scale, followed by silence.
inline Pcm MakeImpulse(std::size_t sampleFrames)
{
    Pcm pcm(sampleFrames);
    pcm[0] = 1.0F;
    return pcm;
}

inline Pcm MakeSine(double frequencyHz, float amplitude, int rateHz, std::size_t sampleFrames)
{
    Pcm pcm(sampleFrames);
    for (std::size_t i = 0; i < sampleFrames; ++i) {
        const double turns = frequencyHz * static_cast<double>(i) / rateHz;
        pcm[i] = static_cast<float>(amplitude * std::sin(2 * std::numbers::pi * turns));
    }
    return pcm;
}

/// Full-band noise of even distribution, the same for the same seed.
inline Pcm MakeNoise(std::size_t sampleFrames, float amplitude, unsigned int seed = 1)
{
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> level(-amplitude, amplitude);
    Pcm pcm(sampleFrames);
    for (float& sample : pcm) {
        sample = level(random);
    }
    return pcm;
}

/// A signal on both sides, interleaved.
inline Pcm MakeStereo(const Pcm& left, const Pcm& right)
{
    Pcm stereo;
    for (std::size_t i = 0; i < left.size(); ++i) {
        stereo.push_back(left[i]);
        stereo.push_back(right[i]);
    }
    return stereo;
}

inline Pcm TakeSide(const Pcm& stereo, int side)
{
    Pcm pcm;
    for (std::size_t i = static_cast<std::size_t>(side); i < stereo.size(); i += 2) {
        pcm.push_back(stereo[i]);
    }
    return pcm;
}

/// The output of an effect, or anything else that processes PCM, for the whole input at once.
template<class Processor>
Pcm Through(Processor&& processor, Pcm pcm)
{
    processor.Process(pcm);
    return pcm;
}

/// The amplitude of a sine in a signal of which it fits in a whole number of periods.
inline double GetAmplitude(const Pcm& pcm, double frequencyHz, int rateHz)
{
    std::complex<double> sum = 0.0;
    for (std::size_t i = 0; i < pcm.size(); ++i) {
        const double turns = frequencyHz * static_cast<double>(i) / rateHz;
        sum += std::polar(double{pcm[i]}, -2 * std::numbers::pi * turns);
    }
    return 2 * std::abs(sum) / static_cast<double>(pcm.size());
}

inline double ToDecibels(double factor)
{
    return 20 * std::log10(factor);
}

} // namespace Quon::Testing
