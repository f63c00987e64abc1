// Prints the tables of docs/accuracy.md and docs/effects.md: what is to be expected, what was rendered, and
// the error. harmonet_accuracy accuracy|levels

#include "bench/accuracy/Stage.h"

#include "harmonet/definitions/EnvReverbPresets.h"
#include "harmonet/definitions/FXRecords.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <exception>
#include <numbers>

namespace Accuracy
{

namespace
{

Formula Tone(double hz, int rateHz, double amplitude = 0.5)
{
    return [=](int i) { return amplitude * std::sin(2.0 * std::numbers::pi * hz * i / rateHz); };
}

/// A bump whose middle lies at a sample frame, without high frequencies.
Formula Bump(int place, double width)
{
    return [=](int i) { return 0.8 * std::exp(-std::pow((i - place) / width, 2)); };
}

void PrintRow(const char* what, double expected, double rendered, const char* unit, int digits = 2)
{
    std::printf("| %s | %.*f %s | %.*f %s | %.*f |\n", what, digits, expected, unit, digits, rendered, unit,
        digits, rendered - expected);
}

void PrintLimit(const char* what, double limit, double rendered, const char* unit)
{
    std::printf("| %s | below %.0f %s | %.1f %s | – |\n", what, limit, unit, rendered, unit);
}

Heard RenderTone(double hz, int fileHz, int outputHz, const Stage::Options& options)
{
    Stage stage(outputHz, options);
    stage.Create(stage.Make(fileHz, 3 * fileHz, Tone(hz, fileHz))).Play();
    stage.Run(2.0);
    return stage.Read();
}

void PrintConversion(const char* grade, const char* option)
{
    const Stage::Options options = {{"OpenALResampling", option}};
    const auto name = [grade](const char* what) { return std::string(what) + ", " + grade; };
    const Heard half = RenderTone(8820, 22050, 44100, options);
    PrintRow(name("8.82 kHz, 22.05 to 44.1 kHz").c_str(), 0.0,
        ToDecibels(GetAmplitude(half.left, 8820, 44100) / 0.5), "dB");
    const Heard image = RenderTone(9000, 22050, 44100, options);
    PrintLimit(name("image of 9 kHz, 22.05 to 44.1 kHz").c_str(), -60,
        ToDecibels(GetAmplitude(image.left, 13050, 44100) / 0.5), "dB");
    const Heard alias = RenderTone(15000, 44100, 22050, options);
    PrintLimit(name("alias of 15 kHz, 44.1 to 22.05 kHz").c_str(), -60,
        ToDecibels(GetAmplitude(alias.left, 7050, 22050) / 0.5), "dB");
    const Heard tone = RenderTone(1000, 48000, 44100, options);
    PrintLimit(
        name("THD+N of 1 kHz, 48 to 44.1 kHz").c_str(), -80, GetDistortion(tone.left, 1000, 44100), "dB");
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
    PrintRow((std::string("22.05 in 48 kHz after ten minutes, ") + grade).c_str(), 1000.0 * seconds,
        peak / 48.0, "ms");
    Stage slow(44100, {{"OpenALResampling", option}});
    Quon::SndChannel& channel = slow.Create(slow.Make(22050, 22050, Bump(1000, 5.0)), Quon::ChanChgFrequency);
    channel.SetFrequency(100);
    channel.Play();
    slow.Run(12.0);
    const Heard late = slow.Read();
    PrintRow((std::string("`SetFrequency(100)`, sample frame 1000, ") + grade).c_str(), 10000.0,
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

void PrintStarts()
{
    Stage stage(44100);
    std::vector<double> errors;
    std::vector<int> asked;
    int gathered = 0;
    std::vector<int> waiting;
    constexpr int frameMs = 7;
    for (int frame = 0; frame < 300; ++frame) {
        if (frame % 10 == 3 && frame < 280) {
            asked.push_back(frame * frameMs);
            waiting.push_back(gathered);
        }
        gathered += frameMs;
        if (gathered < 40) {
            continue;
        }
        stage.Step(static_cast<unsigned long>(gathered), [&] {
            for (const int after : waiting) {
                Quon::SndChannel& shot =
                    stage.Create(stage.Make(44100, 100, [](int i) { return i == 0 ? 0.5 : 0.0; }));
                shot.SetStartTime(1000 * after, 0);
                shot.Play();
            }
            waiting.clear();
        });
        gathered = 0;
    }
    const Heard heard = stage.Read();
    std::size_t shot = 0;
    double least = 1e9;
    double most = -1e9;
    for (std::size_t i = 0; i < heard.left.size(); ++i) {
        if (heard.left[i] > 0.4 && shot < asked.size()) {
            const double latency = static_cast<double>(i) / 44.1 - asked[shot++];
            least = std::min(least, latency);
            most = std::max(most, latency);
        }
    }
    PrintRow("latency of starts in game frames of 7 ms, least", 42.0, least, "ms", 3);
    PrintRow("latency of starts in game frames of 7 ms, most", 42.0, most, "ms", 3);
}

/// How far ahead of time a sound is that has lost its channel so many times for 200 ms, in sample frames.
double MeasureReturn(int fileHz, int losses)
{
    Stage stage(44100);
    constexpr int stepMs = 40;
    constexpr int away = 5;
    const int lastMs = losses * 2 * away * stepMs + 400;
    const int place = fileHz / 1000 * lastMs;
    Quon::SndFile& file = stage.Make(fileHz, place + fileHz, Bump(place, 15.0));
    Quon::SndChannel* channel = &stage.Create(file);
    channel->Play();
    for (int i = 0; i < losses; ++i) {
        for (int step = 0; step < away; ++step) {
            stage.Step(stepMs);
        }
        stage.Step(stepMs, [&] { channel->Stop(); });
        for (int step = 0; step + 1 < away; ++step) {
            stage.Step(stepMs, [&] { file.SkipSamples(fileHz / 1000 * stepMs); });
        }
        stage.Step(stepMs, [&] {
            file.SkipSamples(fileHz / 1000 * stepMs);
            channel = &stage.Create(file);
            channel->Play();
        });
    }
    stage.Run(1.5);
    const Heard heard = stage.Read();
    return static_cast<double>(place) * 44100 / fileHz - FindPeak(heard.left, 1000, heard.left.size());
}

void PrintReturns()
{
    PrintRow(
        "15 losses of the channel, 44 kHz file, ahead by", 0.0, MeasureReturn(44000, 15), "sample frames");
    PrintRow(
        "15 losses of the channel, 22 kHz file, ahead by", 0.0, MeasureReturn(22000, 15), "sample frames");
}

double MeasurePlaced(const std::function<void(Stage&, Quon::SndChannel&)>& place)
{
    Stage stage(44100);
    Quon::SndChannel& channel =
        stage.Create(stage.Make(44100, 44100 * 2, Tone(441, 44100)), Quon::ChanPositional);
    channel.SetPosition({0.0F, 0.0F, -1.0F});
    place(stage, channel);
    channel.Play();
    stage.Run(1.0);
    return ToDecibels(GetAmplitude(stage.Read().left, 441, 44100) / (0.5 * 0.5957));
}

void PrintPlaces()
{
    PrintRow("gain 0.1", -20.0, MeasurePlaced([](Stage&, auto& c) { c.SetGain(0.1F); }), "dB");
    PrintRow("main gain 0.5", ToDecibels(0.5),
        MeasurePlaced([](Stage& s, auto&) { s.GetDriver().SetMainGain(0.5F); }), "dB");
    PrintRow("distance 20 of 2 to 50", -20.0, MeasurePlaced([](Stage&, auto& c) {
        c.SetMinMaxDistance(2, 50, false);
        c.SetPosition({0, 0, -20});
    }),
        "dB");
    PrintRow("cone of 60 to 120 degrees and 0.2, turned by 45", ToDecibels(0.6),
        MeasurePlaced([](Stage&, auto& c) {
            c.SetCone(60, 120, 0.2F);
            c.SetDirection({0.70711F, 0.0F, 0.70711F});
        }),
        "dB");
    PrintRow("30 degrees to the left", ToDecibels(0.9212 / 0.5957), MeasurePlaced([](Stage&, auto& c) {
        c.SetPosition({-0.5F, 0.0F, -0.86603F});
    }),
        "dB");
}

void PrintFades()
{
    Stage stage(44100);
    Quon::SndChannel& channel = stage.Create(stage.Make(44100, 44100 * 2, [](int) { return 0.8; }));
    channel.FadeIn(200);
    channel.Play();
    stage.Run(0.5);
    channel.FadeOut(400);
    stage.Run(0.5);
    const Heard heard = stage.Read();
    const auto at = [&](int ms) { return heard.left[static_cast<std::size_t>(ms * 441 / 10)]; };
    PrintRow("fade-in of 200 ms of 0.8, after 50 ms", 0.2, at(50), "", 4);
    PrintRow("fade-out of 400 ms of 0.8, after 300 ms", 0.2, at(800), "", 4);
}

void PrintEffects()
{
    Stage stage(44100);
    Quon::SndFXList list;
    const Quon::FXEcho echo = {50.0F, 40.0F, 300.0F, 300.0F, 0};
    list.AddFX(Quon::SndFXEcho, &echo, sizeof echo, 0);
    stage.Create(stage.Make(44100, 44100, Bump(4410, 10.0)), 0, list).Play();
    list.Clear();
    stage.Run(1.5);
    const Heard heard = stage.Read();
    const double first = FindPeak(heard.left, 4000, 8000);
    const double second = FindPeak(heard.left, 16000, 20000);
    const double third = FindPeak(heard.left, 29500, 33500);
    PrintRow("echo of 300 ms", 300.0, (second - first) / 44.1, "ms");
    PrintRow("each echo at 40 %", ToDecibels(0.4),
        ToDecibels(heard.left[static_cast<std::size_t>(third + 0.5)] /
            heard.left[static_cast<std::size_t>(second + 0.5)]),
        "dB");
    Stage band(44100);
    const Quon::FXParamEq eq = {1000.0F, 12.0F, 6.0F};
    list.AddFX(Quon::SndFXParamEq, &eq, sizeof eq, 0);
    band.Create(band.Make(44100, 44100 * 2, Tone(1000, 44100, 0.3)), 0, list).Play();
    list.Clear();
    band.Run(1.5);
    PrintRow(
        "equaliser, 6 dB at 1 kHz", 6.0, ToDecibels(GetAmplitude(band.Read().left, 1000, 44100) / 0.3), "dB");
}

// How far a compressor lets a tone through that begins at once, for its attack.
void PrintAttack()
{
    for (const float attackMs : {1.0F, 10.0F, 100.0F}) {
        Stage stage(44100);
        Quon::SndFXList list;
        const Quon::FXCompressor compressor = {0.0F, attackMs, 200.0F, -20.0F, 10.0F, 0.0F};
        list.AddFX(Quon::SndFXCompressor, &compressor, sizeof compressor, 0);
        stage.Create(stage.Make(44100, 44100 * 2, Tone(1000, 44100, 0.8)), 0, list).Play();
        list.Clear();
        stage.Run(1.5);
        const Heard heard = stage.Read();
        // A ratio of 10 leaves a tenth of what is above the threshold.
        const double above = ToDecibels(0.8) + 20.0;
        const double settled = ToDecibels(std::numbers::sqrt2 * GetLevel(heard.left, 44100, 57330));
        const std::string name = "compressor at 10 : 1 over -20 dB, a tone of -1.9 dB, attack " +
            std::to_string(int(attackMs)) + " ms";
        PrintRow(name.c_str(), -20.0 + above / 10.0, settled, "dB");
    }
}

void PrintAccuracy()
{
    std::printf("| what | expected | rendered | error |\n|---|---|---|---|\n");
    PrintReturns();
    PrintStarts();
    PrintConversion("good", "1");
    PrintConversion("best", "2");
    PrintConversion("fast", "0");
    PrintDrift("good", "1");
    PrintDrift("fast", "0");
    PrintRateChanges();
    PrintPlaces();
    PrintFades();
    PrintEffects();
    PrintAttack();
}

struct Preset
{
    const char* name;
    const Quon::FXEnvReverb& room;
};

const Preset presets[] = {{"Generic", Quon::fxEnvReverbGeneric}, {"Default", Quon::fxEnvReverbDefault},
    {"PaddedCell", Quon::fxEnvReverbPaddedCell}, {"Room", Quon::fxEnvReverbRoom},
    {"BathRoom", Quon::fxEnvReverbBathRoom}, {"LivingRoom", Quon::fxEnvReverbLivingRoom},
    {"StoneRoom", Quon::fxEnvReverbStoneRoom}, {"Auditorium", Quon::fxEnvReverbAuditorium},
    {"ConcertHall", Quon::fxEnvReverbConcertHall}, {"Cave", Quon::fxEnvReverbCave},
    {"Arena", Quon::fxEnvReverbArena}, {"Hangar", Quon::fxEnvReverbHangar},
    {"CarpetedHallway", Quon::fxEnvReverbCarpetedHallway}, {"Hallway", Quon::fxEnvReverbHallway},
    {"StoneCorridor", Quon::fxEnvReverbStoneCorridor}, {"Alley", Quon::fxEnvReverbAlley},
    {"Forest", Quon::fxEnvReverbForest}, {"City", Quon::fxEnvReverbCity},
    {"Mountains", Quon::fxEnvReverbMountains}, {"Quarry", Quon::fxEnvReverbQuarry},
    {"Plain", Quon::fxEnvReverbPlain}, {"ParkingLot", Quon::fxEnvReverbParkingLot},
    {"SewerPipe", Quon::fxEnvReverbSewerPipe}, {"Underwater", Quon::fxEnvReverbUnderwater},
    {"Drugged", Quon::fxEnvReverbDrugged}, {"Dizzy", Quon::fxEnvReverbDizzy},
    {"Psychotic", Quon::fxEnvReverbPsychotic}};

/// The level of the late reverb alone, of steady noise in the octave around 500 Hz.
double MeasureLate(Quon::FXEnvReverb room)
{

    Stage stage(44100);
    room.reflections = -10000;
    stage.GetDriver().SetFXEnvReverb(&room, 2, 0);
    std::uint32_t state = 1;
    Quon::SndFile& noise = stage.Make(44100, 44100 * 4, [&state](int) {
        state = state * 1664525U + 1013904223U;
        return static_cast<double>(state >> 8) / 16777216.0 - 0.5;
    });
    Quon::SndChannel& channel = stage.Create(noise, Quon::ChanPositional | Quon::ChanLooping);
    const Quon::FXEnvReverbSourceProperties onlyRoom = {-10000, 0, 0, 0, 0.0F, 0, 0.0F, 0, 0.0F};
    channel.SetFXEnvReverbSourceProperties(&onlyRoom);
    channel.SetPosition({0.0F, 0.0F, -1.0F});
    channel.Play();
    stage.Run(2.0 + room.decayTime);
    stage.Run(4.0);
    std::vector<double> heard = stage.Read().left;
    heard.erase(heard.begin(), heard.end() - 44100 * 4);
    // A band-pass of two poles.
    const double turn = 2.0 * std::numbers::pi * 500.0 / 44100;
    const double alpha = std::sin(turn) / (2.0 * std::numbers::sqrt2);
    double x1 = 0, x2 = 0, y1 = 0, y2 = 0;
    for (double& sample : heard) {
        const double y =
            (alpha * (sample - x2) + 2.0 * std::cos(turn) * y1 - (1.0 - alpha) * y2) / (1.0 + alpha);
        x2 = x1;
        x1 = sample;
        y2 = y1;
        y1 = y;
        sample = y;
    }
    return ToDecibels(GetLevel(heard, 4410, heard.size()));
}

void PrintLevels()
{
    std::printf("| preset | decay time, s | late level by the record, dB | heard, dB | error, dB |\n"
                "|---|---|---|---|---|\n");
    double generic = 0.0;
    const Quon::FXEnvReverb& usual = Quon::fxEnvReverbGeneric;
    for (const Preset& preset : presets) {
        const double heard = MeasureLate(preset.room);
        if (&preset == presets) {
            generic = heard;
        }
        const double expected = (preset.room.room + preset.room.reverb - usual.room - usual.reverb) / 100.0;
        std::printf("| `fxEnvReverb%s` | %.2f | %.1f | %.1f | %.1f |\n", preset.name,
            double{preset.room.decayTime}, expected, heard - generic, heard - generic - expected);
        std::fflush(stdout);
    }
}

} // namespace

} // namespace Accuracy

int main(int argc, char** argv)
{
    // A user's own settings of OpenAL would show in what is rendered.
    for (const char* name : {"HOME", "XDG_CONFIG_HOME", "XDG_CONFIG_DIRS"}) {
        setenv(name, "/nonexistent", 1);
    }
    try {
        if (argc == 2 && std::strcmp(argv[1], "accuracy") == 0) {
            Accuracy::PrintAccuracy();
        }
        else if (argc == 2 && std::strcmp(argv[1], "levels") == 0) {
            Accuracy::PrintLevels();
        }
        else {
            std::fprintf(stderr, "usage: harmonet_accuracy accuracy|levels\n");
            return 2;
        }
    }
    catch (const std::exception& error) {
        std::fprintf(stderr, "harmonet_accuracy: %s\n", error.what());
        return 1;
    }
    return 0;
}
