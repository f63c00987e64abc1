#include "bench/accuracy/Rows.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace Accuracy
{

namespace
{

Heard RenderTone(double hz, int fileHz, int outputHz, const Stage::Options& options)
{
    Stage stage(outputHz, options);
    stage.Create(stage.Make(fileHz, 3 * fileHz, Tone(hz, fileHz))).Play();
    stage.Run(2.0);
    return stage.Read();
}

/// The largest error of a tone of up to 0.8 of the Nyquist frequency at 22.05 kHz, in dB.
double FindWorstResponse(int fileHz, int outputHz, const Stage::Options& options)
{
    double worst = 0.0;
    for (const double hz : {500.0, 1000.0, 2000.0, 3000.0, 4000.0, 5000.0, 6000.0, 7000.0, 8000.0, 8820.0}) {
        const Heard heard = RenderTone(hz, fileHz, outputHz, options);
        const double error = ToDecibels(GetAmplitude(heard.left, hz, outputHz) / 0.5);
        worst = std::abs(error) > std::abs(worst) ? error : worst;
    }
    return worst;
}

void PrintConversion(const char* grade, const char* option)
{
    const Stage::Options options = {{"OpenALResampling", option}};
    const auto name = [grade](const char* what) { return std::string(what) + ", " + grade; };
    PrintRow(name("largest error of 0.5 to 8.82 kHz, 22.05 to 44.1 kHz"), 0.0,
        FindWorstResponse(22050, 44100, options), "dB");
    PrintRow(name("largest error of 0.5 to 8.82 kHz, 44.1 to 22.05 kHz"), 0.0,
        FindWorstResponse(44100, 22050, options), "dB");
    const Heard image = RenderTone(9000, 22050, 44100, options);
    PrintLimit(name("image of 9 kHz, 22.05 to 44.1 kHz"), -60,
        ToDecibels(GetAmplitude(image.left, 13050, 44100) / 0.5), "dB");
    const Heard alias = RenderTone(15000, 44100, 22050, options);
    PrintLimit(name("alias of 15 kHz, 44.1 to 22.05 kHz"), -60,
        ToDecibels(GetAmplitude(alias.left, 7050, 22050) / 0.5), "dB");
    const Heard tone = RenderTone(1000, 48000, 44100, options);
    PrintLimit(name("THD+N of 1 kHz, 48 to 44.1 kHz"), -80, GetDistortion(tone.left, 1000, 44100), "dB");
}

void PrintDrift(const char* grade, const char* option)
{
    constexpr int seconds = 600;
    Stage stage(48000, {{"OpenALResampling", option}});
    stage.Create(stage.Make(22050, 22050 * (seconds + 1), Bump(22050 * seconds, 20.0))).Play();
    for (int i = 0; i < seconds + 1; ++i) {
        stage.Step(1000);
    }
    const Heard heard = stage.Read();
    const double peak = FindPeak(heard.left, heard.left.size() / 2, heard.left.size());
    PrintRow(std::string("22.05 in 48 kHz after ten minutes, ") + grade, 1000.0 * seconds, peak / 48.0, "ms");
    Stage slow(44100, {{"OpenALResampling", option}});
    Quon::SndChannel& channel = slow.Create(slow.Make(22050, 22050, Bump(1000, 5.0)), Quon::ChanChgFrequency);
    channel.SetFrequency(100);
    channel.Play();
    slow.Run(12.0);
    const Heard late = slow.Read();
    PrintRow(std::string("`SetFrequency(100)`, sample frame 1000, ") + grade, 10000.0,
        FindPeak(late.left, 0, late.left.size()) / 44.1, "ms");
}

double FindWorstBend(const std::vector<double>& heard, std::size_t begin)
{
    double worst = 0.0;
    for (std::size_t i = begin + 2; i < heard.size(); ++i) {
        worst = std::max(worst, std::abs(heard[i] - 2.0 * heard[i - 1] + heard[i - 2]));
    }
    return worst;
}

// The second difference of a tone of 200 Hz whose rate changes at each update, beside that of the fastest.
void PrintRateChanges()
{
    Stage stage(44100);
    Quon::SndChannel& channel =
        stage.Create(stage.Make(44100, 44100 * 8, Tone(200, 44100)), Quon::ChanChgFrequency);
    channel.Play();
    for (int i = 0; i < 80; ++i) {
        stage.Step(50, [&] { channel.SetFrequency(static_cast<unsigned long>(33000 + i * 7919 % 22000)); });
    }
    const double own = 0.5 * std::pow(2.0 * std::numbers::pi * 200 * 55000 / 44100 / 44100, 2);
    PrintLimit("bend of a tone while its rate changes at each update, of its own", 2,
        FindWorstBend(stage.Read().left, 4410) / own, "times");
}

} // namespace

void PrintRates()
{
    PrintConversion("good", "1");
    PrintConversion("best", "2");
    PrintConversion("fast", "0");
    PrintDrift("good", "1");
    PrintDrift("fast", "0");
    PrintRateChanges();
}

} // namespace Accuracy
