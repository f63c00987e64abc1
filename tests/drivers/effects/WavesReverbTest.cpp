#include "drivers/openal/effects/WavesReverbEffect.h"
#include "tests/drivers/effects/Signals.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <string>

namespace Quon::Testing
{
namespace
{

/// The signal between two frequencies, by a plain convolution with the difference of two windowed low-passes.
Pcm FilterBand(const Pcm& pcm, double lowHz, double highHz, int rateHz)
{
    constexpr int reach = 100;
    std::vector<double> kernel;
    const auto getSinc = [](double x) { return x == 0 ? 1.0 : std::sin(x) / x; };
    for (int i = -reach; i <= reach; ++i) {
        const auto getLowPass = [&](double hz) {
            return 2 * hz / rateHz * getSinc(2 * std::numbers::pi * hz / rateHz * i);
        };
        const double window = 0.5 + 0.5 * std::cos(std::numbers::pi * i / (reach + 1));
        kernel.push_back(window * (getLowPass(highHz) - getLowPass(lowHz)));
    }
    Pcm out(pcm.size());
    for (std::size_t i = kernel.size(); i < pcm.size(); ++i) {
        double sum = 0;
        for (std::size_t k = 0; k < kernel.size(); ++k) {
            sum += kernel[k] * pcm[i - k];
        }
        out[i] = static_cast<float>(sum);
    }
    return out;
}

/// The time for 60 dB of an impulse response: the power that is still to come (Schroeder), from -5 to -35 dB.
double MeasureDecayMs(const Pcm& response, int rateHz)
{
    std::vector<double> toCome(response.size() + 1, 0.0);
    for (std::size_t i = response.size(); i > 0; --i) {
        toCome[i - 1] = toCome[i] + double{response[i - 1]} * response[i - 1];
    }
    const auto findFall = [&](double decibels) {
        std::size_t i = 0;
        while (10 * std::log10(toCome[i] / toCome[0]) > decibels) {
            ++i;
        }
        return static_cast<double>(i);
    };
    return 2 * (findFall(-35) - findFall(-5)) * 1000 / rateHz;
}

Pcm GetResponse(const FXWavesReverb& record, int rateHz)
{
    WavesReverbEffect reverb(record, {rateHz, 1});
    return Through(reverb, MakeImpulse(static_cast<std::size_t>(rateHz * (record.reverbTime / 1000 + 0.2))));
}

TEST(WavesReverb, DecaysInItsTimeWithinTenPercent)
{
    struct Row
    {
        int rateHz;
        FXWavesReverb record;
    };
    const Row rows[] = {
        {22050, {0, 0, 1000, 0.001f}},
        {22050, {0, 0, 3000, 0.001f}},
        {22050, {0, 0, 250, 0.001f}},
        {44100, {-6, -10, 2000, 0.5f}},
        {44100, {0, 0, 700, 0.999f}},
        {11025, {0, 0, 1500, 0.2f}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(
            "time " + std::to_string(row.record.reverbTime) + " at " + std::to_string(row.rateHz) + " Hz");
        Pcm response = GetResponse(row.record, row.rateHz);
        response[0] = 0; // The direct sound.
        const double decayMs = MeasureDecayMs(FilterBand(response, 250, 1000, row.rateHz), row.rateHz);
        EXPECT_NEAR(decayMs, row.record.reverbTime, 0.1 * row.record.reverbTime);
    }
}

TEST(WavesReverb, DecaysFasterAtHighFrequenciesByTheRatio)
{
    constexpr int rateHz = 44100;
    for (const float ratio : {0.25f, 0.5f, 0.999f}) {
        SCOPED_TRACE(ratio);
        constexpr double timeMs = 2000;
        const Pcm response = GetResponse({0, 0, timeMs, ratio}, rateHz);
        const double decayMs = MeasureDecayMs(FilterBand(response, 12000, 20000, rateHz), rateHz);
        EXPECT_NEAR(decayMs, ratio * timeMs, 0.1 * ratio * timeMs);
    }
}

TEST(WavesReverb, GivesTheDirectSoundThePowerThatTheRoomLeaves)
{
    for (const float mix : {-96.0f, -10.0f, -3.0f, 0.0f}) {
        SCOPED_TRACE(mix);
        WavesReverbEffect reverb({-6, mix, 1000, 0.999f}, {22050, 1});
        const Pcm out = Through(reverb, MakeImpulse(10));
        EXPECT_NEAR(out[0], std::pow(10, -6 / 20.0) * std::sqrt(1 - std::pow(10, mix / 10)), 1e-5);
    }
}

TEST(WavesReverb, IsAboutAsLoudAsWhatGoesIn)
{
    const Pcm left = MakeNoise(6 * 22050, 0.5f, 1);
    const Pcm right = MakeNoise(6 * 22050, 0.5f, 2);
    for (const float timeMs : {1.0f, 100.0f, 1000.0f, 3000.0f}) {
        for (const float mix : {-3.0f, 0.0f}) {
            SCOPED_TRACE("time " + std::to_string(timeMs) + ", mix " + std::to_string(mix));
            WavesReverbEffect reverb({0, mix, timeMs, 0.999f}, {22050, 2});
            const Pcm out = Through(reverb, MakeStereo(left, right));
            const Pcm settled(out.begin() + static_cast<std::ptrdiff_t>(out.size() / 2), out.end());
            EXPECT_NEAR(10 * std::log10(GetPower(settled) / GetPower(left)), 0.0, 1.0);
        }
    }
}

TEST(WavesReverb, SpreadsOneSideOverBothAndMakesThemUnlike)
{
    WavesReverbEffect reverb({0, 0, 1000, 0.999f}, {22050, 2});
    const Pcm noise = MakeNoise(4 * 22050, 0.5f);
    const Pcm out = Through(reverb, MakeStereo(noise, MakeSilence(noise.size())));
    const Pcm left = TakeSide(out, 0);
    const Pcm right = TakeSide(out, 1);
    EXPECT_NEAR(10 * std::log10(GetPower(left) / GetPower(right)), 0.0, 1.5);
    double common = 0;
    for (std::size_t i = 0; i < left.size(); ++i) {
        common += double{left[i]} * right[i];
    }
    common /= static_cast<double>(left.size());
    EXPECT_LT(std::fabs(common), 0.2 * std::sqrt(GetPower(left) * GetPower(right)));
}

} // namespace
} // namespace Quon::Testing
