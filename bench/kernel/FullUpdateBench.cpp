#include "bench/kernel/CountedMalloc.h"
#include "bench/kernel/Crowd.h"
#include "bench/kernel/NaiveCrowd.h"
#include "bench/kernel/PeerCrowd.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <chrono>
#include <malloc.h>
#include <memory>
#include <string>
#include <utility>
#include <vector>

// FullUpdate/within/N and FullUpdate/over/N: one full update with N looping positional sounds of 200 files.
// Half of the sounds and the listener move. Within: a channel for each sound. Over: 64 channels.
// FullUpdate/still/N is "within" without movement; FullUpdate/names/N is "over" with a different file for
// each sound; FullUpdate/line/N is "over" with a sound along a line, so that the update cannot advance the
// virtual sounds in memory order. Only the update is timed, not the game's own movement, and the driver does
// nothing.
//
// Counters: us_per_update, the median; us_at_best, the 10th percentile; ratio_soloud, Harmonet's 10th
// percentile divided by SoLoud's, updated alternately; naive_us_per_update, the decision alone in a naive
// implementation of the same rules; bytes_per_sound, the memory that the process needs for one more sound;
// allocations_per_update.

namespace
{

using Bench::CrowdPlan;

constexpr int fileCount = 200;
constexpr int scarceChannels = 64;
constexpr int warmUpUpdates = 20;

enum class Kind
{
    Within,
    Still,
    Over,
    Names,
    Line
};

struct Size
{
    int sounds;
    int updates;
    int naiveUpdates; ///< 0 if the naive form would take too long.
};

// Set-up is expensive, so the number of updates is fixed rather than determined by the benchmark library.
constexpr Size sizes[] = {
    {100, 4000, 200}, {1000, 2000, 10}, {4095, 500, 3}, {10'000, 200, 0}, {100'000, 40, 0}};

std::size_t UsedBytes()
{
    const auto info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

/// Times of updates in microseconds.
class Times
{
public:
    /// Reserves memory, so that taking a time does not allocate.
    explicit Times(benchmark::IterationCount count) { times.reserve(static_cast<std::size_t>(count)); }

    template<class Work>
    double Take(Work work)
    {
        const auto begin = std::chrono::steady_clock::now();
        work();
        const std::chrono::duration<double, std::micro> taken = std::chrono::steady_clock::now() - begin;
        times.push_back(taken.count());
        return taken.count();
    }

    /// The median is robust against a few updates that other load slows down.
    double GetMedian() { return GetRank(times.size() / 2); }
    /// The 10th percentile estimates the undisturbed time even if other load slows down most updates.
    double GetBest() { return GetRank(times.size() / 10); }

private:
    double GetRank(std::size_t rank)
    {
        const auto place = times.begin() + static_cast<std::ptrdiff_t>(rank);
        std::ranges::nth_element(times, place);
        return *place;
    }

    std::vector<double> times;
};

int CountChannels(Kind kind, int sounds)
{
    return kind == Kind::Within || kind == Kind::Still ? sounds : scarceChannels;
}

double MeasureNaive(const Size& size, int& heard)
{
    CrowdPlan plan(size.sounds);
    Bench::NaiveCrowd crowd(plan, fileCount, scarceChannels);
    Times times(size.naiveUpdates);
    float x = 0.0F;
    for (int i = 0; i < size.naiveUpdates; ++i) {
        crowd.MoveHalf();
        crowd.MoveListener(x += 0.1F);
        times.Take([&] { crowd.Update(); });
    }
    heard = crowd.CountHeard();
    return times.GetMedian();
}

void FullUpdate(benchmark::State& state, Kind kind, const Size& size)
{
    const int channels = CountChannels(kind, size.sounds);
    constexpr int shortFrames = 1000;
    const Bench::WaveFolder files =
        kind == Kind::Names ? Bench::WaveFolder(size.sounds, shortFrames) : Bench::WaveFolder(fileCount);
    Bench::BenchHost host(channels);
    CrowdPlan plan(size.sounds);
    Bench::Crowd crowd(plan, files, host);
    crowd.Grow(std::min(size.sounds, fileCount));
    const std::size_t bytesBefore = UsedBytes();
    crowd.Grow(size.sounds);
    if (size.sounds > 2 * fileCount) {
        state.counters["bytes_per_sound"] =
            static_cast<double>(UsedBytes() - bytesBefore) / (size.sounds - fileCount);
    }

    if (kind == Kind::Line) {
        crowd.AddLine();
    }

    float x = 0.0F;
    const auto move = [&] {
        if (kind != Kind::Still) {
            crowd.MoveHalf();
            host.GetListener().SetPosition({x += 0.1F, 0.0F, 0.0F});
        }
    };
    for (int i = 0; i < warmUpUpdates; ++i) {
        move();
        host.Update();
    }
    std::unique_ptr<Bench::PeerCrowd> peer;
    if (kind == Kind::Over && Bench::PeerCrowd::IsAvailable() && size.sounds <= Bench::PeerCrowd::maxCount) {
        peer = std::make_unique<Bench::PeerCrowd>(size.sounds);
    }
    Times times(size.updates);
    Times peerTimes(size.updates);
    std::uint64_t allocations = 0;
    for (auto _ : state) {
        if (peer) {
            peer->Move();
            peerTimes.Take([&] { peer->Update(); });
        }
        move();
        const std::uint64_t before = Bench::CountAllocations();
        state.SetIterationTime(1e-6 * times.Take([&] { host.Update(); }));
        allocations += Bench::CountAllocations() - before;
    }
    state.counters["us_per_update"] = times.GetMedian();
    state.counters["us_at_best"] = times.GetBest();
    if (peer) {
        state.counters["ratio_soloud"] = times.GetBest() / peerTimes.GetBest();
    }
    state.counters["allocations_per_update"] =
        static_cast<double>(allocations) / static_cast<double>(state.iterations());

    // A sound that has just got a channel keeps it for a short time, which can exceed the limit temporarily.
    const int expected = std::min(size.sounds, channels);
    int naiveHeard = expected;
    if (size.naiveUpdates > 0 && kind == Kind::Over) {
        state.counters["naive_us_per_update"] = MeasureNaive(size, naiveHeard);
    }
    if (!host.IsRunning() || crowd.CountHeard() != expected || naiveHeard != expected) {
        state.SkipWithError("the wrong number of sounds is heard");
    }
}

const bool registered = [] {
    constexpr std::pair<const char*, Kind> kinds[] = {{"FullUpdate/within/", Kind::Within},
        {"FullUpdate/still/", Kind::Still}, {"FullUpdate/over/", Kind::Over},
        {"FullUpdate/names/", Kind::Names}, {"FullUpdate/line/", Kind::Line}};
    constexpr int maxFiles = 10'000;
    for (const auto& [name, kind] : kinds) {
        for (const Size& size : sizes) {
            if (kind == Kind::Names && size.sounds > maxFiles) {
                continue;
            }
            benchmark::RegisterBenchmark((name + std::to_string(size.sounds)).c_str(), FullUpdate, kind, size)
                ->Iterations(size.updates)
                ->Unit(benchmark::kMicrosecond)
                ->UseManualTime();
        }
    }
    return true;
}();

} // namespace
