#include "bench/heard/RenderHost.h"

#include <benchmark/benchmark.h>
#include <cmath>
#include <random>
#include <stdexcept>

// Displaced/KIND/STEP: a sound of noise is displaced by a more important one after 6 s, returns 5 s later,
// and is compared with an undisturbed run. The counter error_frames is the number of sample frames by which
// it is ahead; negative if it is late. Nothing is timed.
//
// STEP is the time that the host passes to the task list at once: 40 ms, or game frames of 16 ms that it does
// not accumulate. An update runs when 40 ms have accumulated, and advances virtual sounds by the last step.

namespace
{

using Bench::Coding;
using Bench::rateHz;
using Bench::Samples;

constexpr float displacedAfter = 6.0F;
constexpr float displacedFor = 5.0F;
constexpr float runLength = 13.5F;
constexpr float comparedAt = 12.5F;

enum class Kind
{
    Wave,
    Adpcm,
    Mp3,
    Queue,
    Looping
};

Samples MakeNoise(float seconds, unsigned int seed)
{
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> sample(-0.5F, 0.5F);
    Samples noise(static_cast<std::size_t>(seconds * rateHz));
    for (float& value : noise) {
        value = sample(random);
    }
    return noise;
}

void WriteFiles(const Bench::SoundFolder& folder)
{
    constexpr float longEnough = 16.0F;
    folder.Write("Wave", MakeNoise(longEnough, 1), Coding::Pcm);
    folder.Write("Adpcm", MakeNoise(longEnough, 2), Coding::Adpcm);
    folder.Write("Mp3", MakeNoise(longEnough, 3), Coding::Mp3);
    // One ends before the sound is displaced, one meanwhile.
    for (unsigned int i = 0; i < 3; ++i) {
        folder.Write("Part" + std::to_string(i), MakeNoise(5.4F, 4 + i), Coding::Pcm);
    }
    // Begins anew while it is displaced.
    folder.Write("Loop", MakeNoise(9.7F, 7), Coding::Pcm);
    folder.Write("Silence", Samples(static_cast<std::size_t>(longEnough * rateHz)), Coding::Pcm);
}

void StartSound(Quon::Sound& sounds, Kind kind)
{
    constexpr const char* names[] = {"Wave", "Adpcm", "Mp3", "Part0", "Loop"};
    const int id = sounds.New2DSound(names[static_cast<int>(kind)], nullptr);
    if (kind == Kind::Queue) {
        sounds.CatSound(id, "Part1", nullptr);
        sounds.CatSound(id, "Part2", nullptr);
    }
    if (!sounds.StartSound(id, kind == Kind::Looping ? Quon::Sound::StartLooping : 0)) {
        throw std::runtime_error("the sound does not start");
    }
}

Samples Render(const Bench::SoundFolder& folder, Kind kind, float step, bool displaced)
{
    {
        Bench::RenderHost host(folder, 1);
        Quon::Sound& sounds = host.GetSounds();
        StartSound(sounds, kind);
        int intruder = 0;
        for (float time = 0.0F; time < runLength; time += step) {
            if (displaced && intruder == 0 && time >= displacedAfter) {
                intruder = sounds.Play2DSound("Silence", nullptr, 0, 10, 0);
            }
            if (time >= displacedAfter + displacedFor) {
                sounds.StopSound(intruder);
            }
            host.Step(step);
        }
    }
    return folder.ReadOutput().left;
}

double Difference(
    const Samples& a, std::size_t placeA, const Samples& b, std::size_t placeB, std::size_t count)
{
    double sum = 0.0;
    for (std::size_t i = 0; i < count; ++i) {
        sum += std::abs(a[placeA + i] - b[placeB + i]);
    }
    return sum / static_cast<double>(count);
}

/// By how many sample frames `displaced` is ahead of `undisturbed` at that place.
long FindLag(const Samples& undisturbed, const Samples& displaced, std::size_t place)
{
    constexpr std::size_t window = 400;
    constexpr double same = 1e-3;
    for (std::size_t distance = 0; distance < place; ++distance) {
        if (Difference(displaced, place, undisturbed, place - distance, window) < same) {
            return -static_cast<long>(distance);
        }
        if (place + distance + window < undisturbed.size() &&
            Difference(displaced, place, undisturbed, place + distance, window) < same) {
            return static_cast<long>(distance);
        }
    }
    throw std::runtime_error("what is heard after the return was not to be heard at all");
}

void Displaced(benchmark::State& state, Kind kind, float step)
{
    try {
        const Bench::SoundFolder folder;
        WriteFiles(folder);
        long lag = 0;
        for (auto _ : state) {
            const Samples undisturbed = Render(folder, kind, step, false);
            const Samples displaced = Render(folder, kind, step, true);
            const auto during = static_cast<std::size_t>((displacedAfter + displacedFor / 2) * rateHz);
            if (Difference(displaced, during, Samples(rateHz), 0, rateHz) > 0.0) {
                throw std::runtime_error("the sound was not displaced");
            }
            lag = FindLag(undisturbed, displaced, static_cast<std::size_t>(comparedAt * rateHz));
        }
        state.counters["error_frames"] = static_cast<double>(lag);
    }
    catch (const std::exception& error) {
        state.SkipWithError(error.what());
    }
}

const bool registered = [] {
    constexpr std::pair<const char*, Kind> kinds[] = {{"wave", Kind::Wave}, {"adpcm", Kind::Adpcm},
        {"mp3", Kind::Mp3}, {"queue", Kind::Queue}, {"looping", Kind::Looping}};
    // The float that is written as 0.04 lies below it, and would count as 39 ms.
    const std::pair<const char*, float> steps[] = {{"/40ms", std::nextafter(0.04F, 1.0F)}, {"/16ms", 0.016F}};
    for (const auto& [kindName, kind] : kinds) {
        for (const auto& [stepName, step] : steps) {
            const std::string name = std::string("Displaced/") + kindName + stepName;
            benchmark::RegisterBenchmark(name.c_str(), Displaced, kind, step)
                ->Iterations(1)
                ->Unit(benchmark::kMillisecond);
        }
    }
    return true;
}();

} // namespace
