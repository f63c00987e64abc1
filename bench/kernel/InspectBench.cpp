#include "bench/kernel/Crowd.h"

#include <benchmark/benchmark.h>

// Inspect/N: a snapshot of N sounds, as a debug overlay takes in each game frame, after an update in which
// half of them moved, with 64 channels. Only the snapshot is timed.

namespace
{

void Inspect(benchmark::State& state)
{
    constexpr int fileCount = 200;
    constexpr int channels = 64;
    const auto count = static_cast<std::size_t>(state.range(0));
    const Bench::WaveFolder files(fileCount);
    Bench::BenchHost host(channels);
    Bench::CrowdPlan plan(static_cast<int>(count));
    Bench::Crowd crowd(plan, files, host);
    crowd.Grow(static_cast<int>(count));
    std::vector<Quon::SoundState> states(count);
    std::size_t found = 0;
    for (auto _ : state) {
        state.PauseTiming();
        crowd.MoveHalf();
        host.Update();
        state.ResumeTiming();
        found = Quon::SoundSystem::Inspect(states);
    }
    int heard = 0;
    for (const Quon::SoundState& sound : states) {
        heard += sound.hasChannel ? 1 : 0;
    }
    if (found != count || heard != crowd.CountHeard()) {
        state.SkipWithError("the snapshot is not complete");
    }
}

BENCHMARK(Inspect)->Arg(400)->Arg(4000)->Unit(benchmark::kMicrosecond)->Iterations(200);

} // namespace
