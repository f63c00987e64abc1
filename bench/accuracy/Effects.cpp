#include "bench/accuracy/Rows.h"

#include "harmonet/definitions/FXRecords.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace Accuracy
{

namespace
{

constexpr int rateHz = 44100;

/// The left side of a sound with an effect.
template<class Record>
std::vector<double> Render(Quon::SndFX kind, const Record& record, double seconds, const Formula& sound)
{
    Stage stage(rateHz);
    Quon::SndFXList list;
    list.AddFX(kind, &record, sizeof record, 0);
    stage.Create(stage.Make(rateHz, static_cast<int>(seconds * rateHz), sound), 0, list).Play();
    list.Clear();
    stage.Run(seconds + 0.5);
    return stage.Read().left;
}

void PrintEcho()
{
    const std::vector<double> heard =
        Render(Quon::SndFXEcho, Quon::FXEcho{50, 40, 300, 300, 0}, 1, Bump(4410, 10));
    const double first = FindPeak(heard, 4000, 8000);
    const double second = FindPeak(heard, 16000, 20000);
    const double third = FindPeak(heard, 29500, 33500);
    const auto at = [&](double place) { return heard[static_cast<std::size_t>(std::llround(place))]; };
    PrintRow("echo of 300 ms", 300.0, (second - first) / 44.1, "ms");
    PrintRow("each echo at 40 %", ToDecibels(0.4), ToDecibels(at(third) / at(second)), "dB");
}

// A band has all of its gain at the centre and half of its decibels half of its width below and above.
void PrintEqualiser()
{
    const std::pair<int, double> rows[] = {{1000, 6.0}, {707, 3.0}, {1414, 3.0}, {50, 0.0}};
    for (const auto& [hz, expected] : rows) {
        const std::vector<double> heard =
            Render(Quon::SndFXParamEq, Quon::FXParamEq{1000, 12, 6}, 1.5, Tone(hz, rateHz, 0.3));
        PrintRow("equaliser, 6 dB at 1 kHz and an octave wide, at " + std::to_string(hz) + " Hz", expected,
            ToDecibels(GetAmplitude(heard, hz, rateHz) / 0.3), "dB");
    }
}

// The gain repeats its shape 50 times a second, beginning with silence.
void PrintGargle()
{
    const std::pair<const char*, int> shapes[] = {{"triangle", 0}, {"square", 1}};
    for (const auto& [name, shape] : shapes) {
        const std::vector<double> heard =
            Render(Quon::SndFXGargle, Quon::FXGargle{50, shape}, 1, [](int) { return 0.5; });
        double worst = 0.0;
        for (std::size_t i = 0; i < rateHz; ++i) {
            const double turn = std::fmod(static_cast<double>(i) * 50 / rateHz, 1.0);
            const double gain = shape == 1 ? (turn < 0.5 ? 1.0 : 0.0) : 1.0 - std::abs(2.0 * turn - 1.0);
            worst = std::max(worst, std::abs(heard[i] - 0.5 * gain));
        }
        PrintRow(
            std::string("gargle of 50 Hz, ") + name + ", largest error of the amplitude", 0.0, worst, "", 4);
    }
}

// The tone of a wet sweep alone bends with the speed at which the delay changes: by 2 pi * frequency * swing.
void PrintSweep()
{
    constexpr double toneHz = 1000.0;
    constexpr double sweepHz = 2.0;
    constexpr double delayMs = 10.0;
    constexpr double depth = 20.0;
    const std::vector<double> heard = Render(Quon::SndFXChorus,
        Quon::FXChorus{100, static_cast<float>(depth), 0, static_cast<float>(sweepHz), 1,
            static_cast<float>(delayMs), 2},
        2, Tone(toneHz, rateHz, 0.5));
    double worst = 0.0;
    for (std::size_t i = rateHz / 10; i < 2 * rateHz; ++i) {
        const double seconds = static_cast<double>(i) / rateHz;
        const double delay =
            delayMs / 1000 * (1 + depth / 100 * std::sin(2 * std::numbers::pi * sweepHz * seconds));
        worst = std::max(
            worst, std::abs(heard[i] - 0.5 * std::sin(2 * std::numbers::pi * toneHz * (seconds - delay))));
    }
    PrintRow("chorus of 2 Hz, a tone of 1 kHz and 0.5, largest error of the amplitude", 0.0, worst, "", 4);
}

// A ratio of 10 leaves a tenth of what is above the threshold. How far an attack lets a sine through.
void PrintCompressor()
{
    for (const int attackMs : {1, 10, 100}) {
        const std::vector<double> heard = Render(Quon::SndFXCompressor,
            Quon::FXCompressor{0, static_cast<float>(attackMs), 200, -20, 10, 0}, 2, Tone(1000, rateHz, 0.8));
        const double above = ToDecibels(0.8) + 20.0;
        PrintRow(
            "compressor at 10 : 1 over -20 dB, a tone of -1.9 dB, attack " + std::to_string(attackMs) + " ms",
            -20.0 + above / 10.0, ToDecibels(std::numbers::sqrt2 * GetLevel(heard, 44100, 57330)), "dB");
    }
}

} // namespace

void PrintEffects()
{
    PrintEcho();
    PrintEqualiser();
    PrintGargle();
    PrintSweep();
    PrintCompressor();
}

} // namespace Accuracy
