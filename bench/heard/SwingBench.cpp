#include "bench/heard/RenderHost.h"

#include "harmonet/instances/Snd3D.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <cmath>
#include <numbers>
#include <stdexcept>
#include <vector>

// Swing: two equal sounds 10 m away, one channel for both, and a listener who swings by 5 cm to one side and
// the other, so that with each of 1 000 updates another one is nearer. Counters: channel_changes, how often
// the channel changes from one sound to the other; steepest_step, the largest difference of successive
// samples of the output; own_steepest_step, the same while the listener is at rest and nothing changes;
// lowest_db and highest_db, the level of both sides in windows of ten periods of the tone, relative to that
// while nothing changes. Swing/cut has no handover fades, Swing/faded those of the default. Nothing is timed.

namespace
{

using Bench::rateHz;
using Bench::Samples;

constexpr int updates = 1000;
constexpr float stepSeconds = 0.05F;
constexpr float swing = 0.05F;

Samples MakeTone()
{
    constexpr double toneHz = 441.0;
    Samples tone(2 * rateHz);
    for (std::size_t i = 0; i < tone.size(); ++i) {
        const double phase = 2.0 * std::numbers::pi * toneHz * static_cast<double>(i) / rateHz;
        tone[i] = static_cast<float>(0.8 * std::sin(phase));
    }
    return tone;
}

void StartTone(Bench::RenderHost& host, Quon::Particle& world, float x)
{
    Quon::Sound& sounds = host.GetSounds();
    const int id = sounds.New3DSound("Tone", nullptr);
    // A sound without settings of its own begins with a cone of no width.
    sounds.SetSoundCone(id, 360.0F, 360.0F, 1.0F);
    sounds.SetSoundMinMaxDistance(id, 10.0F, 100.0F, false);
    sounds.SetSoundPosition(id, {x, 0.0F, -8.0F});
    sounds.AttachSound(id, &world, Quon::PString());
    if (!sounds.StartSound(id, Quon::Sound::StartLooping)) {
        throw std::runtime_error("the sound does not start");
    }
}

const Quon::Particle* FindHeard(const Quon::Particle& world)
{
    for (const Quon::Particle* node = world.GetFirstChild(); node != nullptr; node = node->GetNextSibling()) {
        if (static_cast<const Quon::Snd3D*>(node)->GetSndChannel() != nullptr) {
            return node;
        }
    }
    return nullptr;
}

/// Renders the swing and returns how often the channel changed.
int Render(const Bench::SoundFolder& folder, float width, const char* fadeMs)
{
    Bench::RenderHost host(folder, 1, {{"OpenALHandoverFade", fadeMs}});
    Quon::Particle world;
    // At different phases, so that a change of channel is a change of the waveform.
    StartTone(host, world, -6.0F);
    host.Step(stepSeconds);
    host.Step(0.0777F);
    StartTone(host, world, 6.0F);
    int changes = 0;
    const Quon::Particle* heard = FindHeard(world);
    for (int i = 0; i < updates; ++i) {
        host.GetListener().SetPosition({i % 2 == 0 ? width : -width, 0.0F, 0.0F});
        host.Step(stepSeconds);
        changes += FindHeard(world) != heard ? 1 : 0;
        heard = FindHeard(world);
    }
    return changes;
}

float FindSteepestStep(const Samples& samples)
{
    float steepest = 0.0F;
    for (std::size_t i = 1; i < samples.size(); ++i) {
        steepest = std::max(steepest, std::abs(samples[i] - samples[i - 1]));
    }
    return steepest;
}

float FindSteepestStep(const Bench::Stereo& output)
{
    return std::max(FindSteepestStep(output.left), FindSteepestStep(output.right));
}

/// The levels of both sides together in windows of ten periods, in dB of full scale, without the first
/// second.
std::vector<double> GetLevels(const Bench::Stereo& output)
{
    constexpr std::size_t window = 10 * rateHz / 441;
    std::vector<double> levels;
    for (std::size_t begin = rateHz; begin + window < output.left.size(); begin += window) {
        double power = 0.0;
        for (std::size_t i = begin; i < begin + window; ++i) {
            power += double{output.left[i]} * output.left[i] + double{output.right[i]} * output.right[i];
        }
        levels.push_back(10.0 * std::log10(power / window));
    }
    return levels;
}

void Swing(benchmark::State& state, const char* fadeMs)
{
    try {
        const Bench::SoundFolder folder;
        folder.Write("Tone", MakeTone(), Bench::Coding::Pcm);
        int changesAtRest = 0;
        for (auto _ : state) {
            changesAtRest = Render(folder, 0.0F, fadeMs);
            const Bench::Stereo still = folder.ReadOutput();
            state.counters["channel_changes"] = Render(folder, swing, fadeMs);
            const Bench::Stereo swung = folder.ReadOutput();
            state.counters["own_steepest_step"] = FindSteepestStep(still);
            state.counters["steepest_step"] = FindSteepestStep(swung);
            const double own = GetLevels(still).back();
            const std::vector<double> levels = GetLevels(swung);
            const auto [lowest, highest] = std::minmax_element(levels.begin(), levels.end());
            state.counters["lowest_db"] = *lowest - own;
            state.counters["highest_db"] = *highest - own;
        }
        if (changesAtRest > 0) {
            throw std::runtime_error("the channel changes while nothing moves");
        }
    }
    catch (const std::exception& error) {
        state.SkipWithError(error.what());
    }
}

BENCHMARK_CAPTURE(Swing, cut, "0")->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Swing, faded, "30")->Iterations(1)->Unit(benchmark::kMillisecond);

} // namespace
