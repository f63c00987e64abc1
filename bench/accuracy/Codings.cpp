#include "bench/accuracy/Rows.h"
#include "bench/heard/RenderHost.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace Accuracy
{

namespace
{

using Bench::Samples;

constexpr float stepSeconds = 0.0401F;
constexpr int steps = 300;

Samples MakeSweep()
{
    Samples sweep(14 * Bench::rateHz);
    for (std::size_t i = 0; i < sweep.size(); ++i) {
        const double seconds = static_cast<double>(i) / Bench::rateHz;
        sweep[i] = static_cast<float>(0.5 * std::sin(2000.0 * seconds + 700.0 * std::pow(seconds, 1.7)));
    }
    return sweep;
}

/// Renders the file, which loses its channel so many times for 200 ms to a more important sound.
Samples Render(const Bench::SoundFolder& folder, int losses)
{
    {
        Bench::RenderHost host(folder, 1);
        host.GetSounds().Play2DSound("Sweep", nullptr, 0, 0, 0);
        int intruder = 0;
        for (int step = 0; step < steps; ++step) {
            if (step % 10 == 5 && step / 10 < losses) {
                intruder = host.GetSounds().Play2DSound("Silence", nullptr, 0, 10, 0);
            }
            if (step % 10 == 0) {
                host.GetSounds().StopSound(intruder);
            }
            host.Step(stepSeconds);
        }
    }
    return folder.ReadOutput().left;
}

/// The largest difference in steps of 16 bits over a second that begins at these sample frames.
double FindWorst(const Samples& one, std::size_t begin, const Samples& other, std::size_t otherBegin)
{
    double worst = 0.0;
    for (std::size_t i = 0; i < Bench::rateHz; ++i) {
        worst = std::max(worst, 32768.0 * std::abs(double{one[begin + i]} - other[otherBegin + i]));
    }
    return worst;
}

/// The same for the best of all offsets of an encoder's or decoder's delay.
double FindWorstAligned(const Samples& rendered, const Samples& decoded)
{
    constexpr std::size_t begin = 4 * Bench::rateHz;
    constexpr std::size_t mostDelay = 3000;
    std::size_t best = begin;
    double least = 1e9;
    for (std::size_t other = begin - mostDelay; other < begin + mostDelay; ++other) {
        double sum = 0.0;
        for (std::size_t i = 0; i < 500; ++i) {
            sum += std::abs(double{rendered[begin + i]} - decoded[other + i]);
        }
        best = sum < least ? other : best;
        least = std::min(least, sum);
    }
    return FindWorst(rendered, begin, decoded, best);
}

} // namespace

// What libsndfile decodes from the same file is what is to be heard.
void PrintCodings()
{
    const Bench::SoundFolder folder;
    folder.Write("Silence", Samples(Bench::rateHz), Bench::Coding::Pcm);
    const std::pair<const char*, Bench::Coding> codings[] = {{"PCM", Bench::Coding::Pcm},
        {"MS ADPCM", Bench::Coding::Adpcm}, {"MPEG Layer III", Bench::Coding::Mp3}};
    for (const auto& [name, coding] : codings) {
        folder.Write("Sweep", MakeSweep(), coding);
        const Samples rendered = Render(folder, 0);
        PrintLimit(std::string(name) + ", largest difference from libsndfile's decoder", 2,
            FindWorstAligned(rendered, folder.Read("Sweep")), "steps of 16 bits");
        const Samples displaced = Render(folder, 20);
        if (FindWorst(rendered, 3 * Bench::rateHz, displaced, 3 * Bench::rateHz) < 1000.0) {
            throw std::runtime_error("the sound has not lost its channel");
        }
        constexpr std::size_t after = 11 * Bench::rateHz;
        PrintRow(std::string(name) + ", largest difference after 20 losses of the channel", 0.0,
            FindWorst(rendered, after, displaced, after), "steps of 16 bits");
    }
}

} // namespace Accuracy
