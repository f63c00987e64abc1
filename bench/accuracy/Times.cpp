#include "bench/accuracy/Rows.h"

#include "harmonet/definitions/FXRecords.h"

#include <algorithm>
#include <cmath>

namespace Accuracy
{

namespace
{

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

struct Played
{
    int fileHz;
    int playedHz;
    bool hasEffect; ///< An equaliser that changes nothing.
};

/// Where the peak of a sound is heard that loses its channel so many times for 200 ms, in sample frames.
double FindPeakAfter(int losses, const Played& played)
{
    Stage stage(44100);
    constexpr int stepMs = 40;
    constexpr int away = 5;
    constexpr int mostLosses = 15;
    const int framesPerStep = played.playedHz / 1000 * stepMs;
    const int place = (mostLosses * 2 * away + 10) * framesPerStep;
    Quon::SndFile& file = stage.Make(played.fileHz, place + 2 * played.fileHz, Bump(place, 15.0));
    Quon::SndFXList list;
    const Quon::FXParamEq neutral = {1000.0F, 12.0F, 0.0F};
    if (played.hasEffect) {
        list.AddFX(Quon::SndFXParamEq, &neutral, sizeof neutral, 0);
    }
    Quon::SndChannel* channel = nullptr;
    const auto start = [&] {
        channel = &stage.Create(file, Quon::ChanChgFrequency, list);
        channel->SetFrequency(static_cast<unsigned long>(played.playedHz));
        channel->Play();
    };
    stage.Step(stepMs, start);
    for (int i = 0; i < mostLosses; ++i) {
        for (int step = 0; step < away; ++step) {
            stage.Step(stepMs, [&] { i < losses&& step + 1 == away ? channel->Stop() : void(); });
        }
        for (int step = 0; step < away; ++step) {
            stage.Step(stepMs, [&] {
                if (i < losses) {
                    file.SkipSamples(framesPerStep);
                    step + 1 == away ? start() : void();
                }
            });
        }
    }
    stage.Run(1.5);
    list.Clear();
    const Heard heard = stage.Read();
    return FindPeak(heard.left, 1000, heard.left.size());
}

void PrintReturns()
{
    const std::pair<const char*, Played> rows[] = {{"44 kHz file", {44000, 44000, false}},
        {"22 kHz file", {22000, 22000, false}}, {"22 kHz file played at 33 kHz", {22000, 33000, false}},
        {"44 kHz file with an effect", {44000, 44000, true}}};
    for (const auto& [what, played] : rows) {
        PrintRow(std::string("15 losses of the channel, ") + what + ", ahead by", 0.0,
            FindPeakAfter(0, played) - FindPeakAfter(15, played), "sample frames");
    }
}

// The end is heard when the last sample frame has been, so the sum of uneven steps counts.
void PrintLength()
{
    constexpr int seconds = 600;
    Stage stage(44100);
    stage.Create(stage.Make(11025, 11025 * seconds, [](int i) { return i == 0 ? 0.0 : 0.25; })).Play();
    for (int ms = 0; ms < (seconds + 1) * 1000;) {
        const int step = 40 + ms * 7 % 31;
        stage.Step(static_cast<unsigned long>(step));
        ms += step;
    }
    const Heard heard = stage.Read();
    std::size_t end = heard.left.size();
    while (end > 0 && std::abs(heard.left[end - 1]) < 0.125) {
        --end;
    }
    PrintRow("length of a sound of ten minutes, in steps of 40 to 70 ms", 1000.0 * seconds,
        static_cast<double>(end) / 44.1, "ms");
}

} // namespace

void PrintTimes()
{
    PrintReturns();
    PrintStarts();
    PrintLength();
}

} // namespace Accuracy
