#include "bench/kernel/BenchHost.h"

#include "harmonet/instances/Sound.h"

#include <benchmark/benchmark.h>

// StartStop/cached/N: a game plays a sound whose data are in the cache, on a channel at once, and stops it,
// while N others play.

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
    for (int i = 0; i < others; ++i)
        group.Play2DSound(files.GetName(i), nullptr, Sound::StartLooping, 0, 0);
    host.Update();

    int index = 0;
    int refused = 0;
    for (auto _ : state) {
        const int id = group.Play2DSound(files.GetName(++index), nullptr, Sound::StartImmediately, 0, 0);
        refused += id == 0 ? 1 : 0;
        group.StopSound(id);
    }
    if (!host.IsRunning() || refused > 0)
        state.SkipWithError("a sound was refused");
}

BENCHMARK(StartStopCached)->Name("StartStop/cached")->Arg(0)->Arg(1000);

} // namespace
