#include "bench/kernel/BenchHost.h"

#include "harmonet/instances/Snd3D.h"
#include "harmonet/instances/Sound.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <chrono>
#include <malloc.h>
#include <random>
#include <vector>

// FullUpdate/within/N and FullUpdate/over/N: one full update with N looping positional sounds of 200 files,
// half of which move, as the listener does. Within: there is a channel for each. Over: 64 channels. Only the
// update is timed, not the game's own moving of things.

namespace
{

using namespace Quon;

constexpr int fileCount = 200;
constexpr int scarceChannels = 64;
constexpr float worldSize = 400.0F;
constexpr int soundNode = 16;
constexpr int warmUpUpdates = 10;

std::size_t UsedBytes()
{
    const auto info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

/// A crowd of sounds around the listener, who stands at the origin while they are started.
class Crowd
{
public:
    Crowd(const Bench::WaveFolder& newFiles, Bench::BenchHost& newHost, int count)
        : files(newFiles)
        , host(newHost)
    {
        constexpr int priorities = 3;
        for (int i = 0; i < count; ++i)
            places.push_back({static_cast<int>(random() % priorities), AnyPlace()});
        // In this order a new sound comes to stand near the head of its list, and the start takes no time.
        std::ranges::sort(places, [](const Place& left, const Place& right) {
            return left.priority != right.priority ? left.priority > right.priority
                                                   : DistSqr(left.position) < DistSqr(right.position);
        });
    }

    /// Starts further sounds until there are that many.
    void Grow(int count)
    {
        constexpr int soundsInUpdate = 500;
        while (static_cast<int>(ids.size()) < count) {
            Start(places[ids.size()]);
            if (ids.size() % soundsInUpdate == 0)
                host.Update();
        }
        host.Update();
    }

    void MoveHalf()
    {
        for (std::size_t i = 0; i < ids.size(); i += 2)
            group.SetSoundPosition(ids[i], AnyPlace());
    }

    int CountHeard() const
    {
        int heard = 0;
        for (const Particle* node = world.GetFirstChild(); node != nullptr; node = node->GetNextSibling()) {
            if (node->GetID() == soundNode && static_cast<const Snd3D*>(node)->GetSndChannel() != nullptr)
                ++heard;
        }
        return heard;
    }

private:
    struct Place
    {
        int priority;
        Vector3 position;
    };

    static float DistSqr(const Vector3& place)
    {
        return place.x * place.x + place.y * place.y + place.z * place.z;
    }

    void Start(const Place& place)
    {
        const int id = group.New3DSound(files.GetName(static_cast<int>(ids.size())), nullptr);
        group.SetSoundPosition(id, place.position);
        group.SetSoundPriority(id, place.priority);
        group.SetSoundMinMaxDistance(id, 1.0F, 2.0F * worldSize, false);
        group.AttachSound(id, &world, PString());
        group.StartSound(id, Sound::StartLooping);
        ids.push_back(id);
    }

    Vector3 AnyPlace()
    {
        std::uniform_real_distribution<float> coordinate(-worldSize, worldSize);
        const float x = coordinate(random);
        return {x, 0.0F, coordinate(random)};
    }

    const Bench::WaveFolder& files;
    Bench::BenchHost& host;
    std::vector<Place> places;
    std::mt19937 random{1};
    Particle world;
    Sound group;
    std::vector<int> ids;
};

void FullUpdate(benchmark::State& state, bool within)
{
    const int count = static_cast<int>(state.range(0));
    const Bench::WaveFolder files(fileCount);
    Bench::BenchHost host(within ? count : scarceChannels);
    Crowd crowd(files, host, count);
    crowd.Grow(std::min(count, fileCount));
    const std::size_t bytesBefore = UsedBytes();
    crowd.Grow(count);
    for (int i = 0; i < warmUpUpdates; ++i)
        host.Update();
    if (count > 2 * fileCount)
        state.counters["bytes_per_sound"] =
            static_cast<double>(UsedBytes() - bytesBefore) / (count - fileCount);

    float x = 0.0F;
    std::vector<double> microseconds;
    for (auto _ : state) {
        crowd.MoveHalf();
        host.GetListener().SetPosition({x += 0.1F, 0.0F, 0.0F});
        const auto begin = std::chrono::steady_clock::now();
        host.Update();
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin;
        state.SetIterationTime(taken.count());
        microseconds.push_back(1e6 * taken.count());
    }
    // The median, since a machine that does other things too disturbs a few updates much.
    const auto middle = microseconds.begin() + static_cast<std::ptrdiff_t>(microseconds.size() / 2);
    std::ranges::nth_element(microseconds, middle);
    state.counters["us_per_update"] = *middle;
    const int heard = crowd.CountHeard();
    // A sound that has just come on keeps its channel for a while, whatever the limit, but not beyond it for
    // long.
    if (!host.IsRunning() || heard != (within ? count : std::min(count, scarceChannels)))
        state.SkipWithError("other sounds are heard than should be");
}

void FullUpdateWithin(benchmark::State& state)
{
    FullUpdate(state, true);
}

void FullUpdateOver(benchmark::State& state)
{
    FullUpdate(state, false);
}

struct Size
{
    int sounds;
    int updates;
};

// The set-up is costly, so the number of updates is given here and not searched for.
constexpr Size sizes[] = {{100, 4000}, {1000, 2000}, {4095, 500}, {10'000, 200}, {100'000, 30}};

const bool registered = [] {
    for (const Size& size : sizes) {
        for (const bool within : {true, false}) {
            auto* const bench = benchmark::RegisterBenchmark(
                within ? "FullUpdate/within" : "FullUpdate/over", within ? FullUpdateWithin : FullUpdateOver);
            bench->Arg(size.sounds)->Iterations(size.updates)->Unit(benchmark::kMicrosecond)->UseManualTime();
        }
    }
    return true;
}();

} // namespace
