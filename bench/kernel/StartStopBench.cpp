#include "bench/kernel/BenchHost.h"
#include "bench/kernel/CrowdPlan.h"

#include "harmonet/instances/Sound.h"

#include <benchmark/benchmark.h>
#include <memory>

// StartStop/cached/N: a game plays a cached sound immediately on a channel and stops it, while N others play.
// StartMany/FORM/N: a game starts N positional sounds in one game frame; includes the update that follows.
// Within: a channel for each sound. Over: 64 channels. Names: 64 channels and a different file for each
// sound.

namespace
{

using namespace Quon;

constexpr int fileCount = 200;

void StartStopCached(benchmark::State& state)
{
    const int others = static_cast<int>(state.range(0));
    const Bench::WaveFolder files(fileCount);
    Bench::BenchHost host(others + 1);
    Sound group;
    for (int i = 0; i < others; ++i) {
        group.Play2DSound(files.GetName(i), nullptr, Sound::StartLooping, 0, 0);
    }
    host.Update();

    int index = 0;
    int refused = 0;
    for (auto _ : state) {
        const int id = group.Play2DSound(files.GetName(++index), nullptr, Sound::StartImmediately, 0, 0);
        refused += id == 0 ? 1 : 0;
        group.StopSound(id);
    }
    if (!host.IsRunning() || refused > 0) {
        state.SkipWithError("a sound was refused");
    }
}

// Starts duplicates and different sounds, near and far, in random order. The group's destructor ends them.
void StartCrowd(Sound& group, Bench::CrowdPlan& plan, const Bench::WaveFolder& files)
{
    constexpr int priorities = 3;
    Sound::Settings settings;
    settings.minDistance = Bench::CrowdPlan::minDistance;
    settings.maxDistance = Bench::CrowdPlan::maxDistance;
    for (int i = 0; i < plan.GetCount(); ++i) {
        group.Play3DSound(plan.AnyPosition(), files.GetName(i), nullptr, Sound::StartLooping,
            1 + i % priorities, settings, 0);
    }
}

void StartMany(benchmark::State& state, int channels, int numFiles)
{
    constexpr int shortFrames = 1000;
    const Bench::WaveFolder files(
        numFiles, numFiles > fileCount ? shortFrames : Bench::WaveFolder::sampleFrames);
    Bench::BenchHost host(channels);
    Bench::CrowdPlan plan(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        auto group = std::make_unique<Sound>();
        StartCrowd(*group, plan, files);
        host.Update();
        state.PauseTiming();
        group.reset();
        state.ResumeTiming();
    }
    if (!host.IsRunning()) {
        state.SkipWithError("the sound system is not running");
    }
}

BENCHMARK(StartStopCached)->Name("StartStop/cached")->Arg(0)->Arg(1000);
BENCHMARK_CAPTURE(StartMany, within, 10'000, fileCount)
    ->Arg(10'000)
    ->Iterations(10)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(StartMany, over, 64, fileCount)->Arg(10'000)->Iterations(10)->Unit(benchmark::kMillisecond);
// Shows that twice as many take twice as long.
BENCHMARK_CAPTURE(StartMany, names, 64, 8'000)
    ->RangeMultiplier(2)
    ->Range(1'000, 8'000)
    ->Iterations(5)
    ->Unit(benchmark::kMillisecond);

} // namespace
