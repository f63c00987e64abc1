#include "tests/drivers/effects/Signals.h"

#include <numbers>
#include <random>

namespace Quon::Testing
{

Pcm MakeSilence(std::size_t sampleFrames, int channels)
{
    return Pcm(sampleFrames * static_cast<std::size_t>(channels), 0.0f);
}

Pcm MakeImpulse(std::size_t sampleFrames, float level)
{
    Pcm pcm = MakeSilence(sampleFrames);
    pcm[0] = level;
    return pcm;
}

Pcm MakeSine(double frequencyHz, float amplitude, int rateHz, std::size_t sampleFrames)
{
    Pcm pcm(sampleFrames);
    for (std::size_t i = 0; i < sampleFrames; ++i) {
        const double turns = frequencyHz * static_cast<double>(i) / rateHz;
        pcm[i] = static_cast<float>(amplitude * std::sin(2 * std::numbers::pi * turns));
    }
    return pcm;
}

Pcm MakeNoise(std::size_t sampleFrames, float amplitude, unsigned int seed)
{
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> level(-amplitude, amplitude);
    Pcm pcm(sampleFrames);
    for (float& sample : pcm) {
        sample = level(random);
    }
    return pcm;
}

Pcm MakeStereo(const Pcm& left, const Pcm& right)
{
    Pcm stereo;
    for (std::size_t i = 0; i < left.size(); ++i) {
        stereo.push_back(left[i]);
        stereo.push_back(right[i]);
    }
    return stereo;
}

Pcm TakeSide(const Pcm& stereo, int side)
{
    Pcm pcm;
    for (std::size_t i = static_cast<std::size_t>(side); i < stereo.size(); i += 2) {
        pcm.push_back(stereo[i]);
    }
    return pcm;
}

std::complex<double> GetSpectrum(const Pcm& pcm, double frequencyHz, int rateHz)
{
    std::complex<double> sum = 0.0;
    for (std::size_t i = 0; i < pcm.size(); ++i) {
        const double turns = frequencyHz * static_cast<double>(i) / rateHz;
        sum += std::polar(double{pcm[i]}, -2 * std::numbers::pi * turns);
    }
    return sum / static_cast<double>(pcm.size());
}

double GetAmplitude(const Pcm& pcm, double frequencyHz, int rateHz)
{
    return 2 * std::abs(GetSpectrum(pcm, frequencyHz, rateHz));
}

double GetPower(const Pcm& pcm)
{
    double sum = 0.0;
    for (const float sample : pcm) {
        sum += double{sample} * sample;
    }
    return sum / static_cast<double>(pcm.size());
}

double ToDecibels(double factor)
{
    return 20 * std::log10(factor);
}

} // namespace Quon::Testing
