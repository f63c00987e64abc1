// The cost of each insert effect with its default parameters, compared with a plain gain, the cheapest
// possible effect.

#include "drivers/openal/effects/EffectChain.h"

#ifdef HARMONET_HAS_OPENAL
#include "bench/effects/RoomBench.h"
#endif

#include <benchmark/benchmark.h>

#include <algorithm>
#include <ctime>
#include <random>
#include <span>
#include <string>
#include <vector>

namespace
{

constexpr int rateHz = 22050;
/// The block size of the driver's channels.
constexpr std::size_t blockFrames = 441;

struct NamedEffect
{
    const char* name;
    Quon::SndFX kind;
};

constexpr NamedEffect namedEffects[] = {
    {"Chorus", Quon::SndFXChorus},
    {"Flanger", Quon::SndFXFlanger},
    {"Echo", Quon::SndFXEcho},
    {"Distortion", Quon::SndFXDistortion},
    {"Compressor", Quon::SndFXCompressor},
    {"ParamEq", Quon::SndFXParamEq},
    {"Gargle", Quon::SndFXGargle},
    {"WavesReverb", Quon::SndFXWavesReverb},
};

/// Returns one second of noise, loud enough to engage the compressor.
std::vector<float> MakeSound(int channels)
{
    std::mt19937 random(1);
    std::uniform_real_distribution<float> level(-0.8F, 0.8F);
    std::vector<float> sound(static_cast<std::size_t>(rateHz * channels));
    std::generate(sound.begin(), sound.end(), [&] { return level(random); });
    return sound;
}

double GetPower(const std::vector<float>& sound)
{
    double sum = 0.0;
    for (float sample : sound) {
        sum += double{sample} * sample;
    }
    return sum / static_cast<double>(sound.size());
}

/// Returns the processor time of this thread, which excludes other load on the machine.
double GetProcessorMicroseconds()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) * 1e6 + static_cast<double>(now.tv_nsec) * 1e-3;
}

template<class Process>
void Measure(benchmark::State& state, int channels, Process process)
{
    const std::vector<float> dry = MakeSound(channels);
    std::vector<float> wet(dry.size());
    const std::size_t blockSize = blockFrames * static_cast<std::size_t>(channels);
    const double begin = GetProcessorMicroseconds();
    for (auto step : state) {
        for (std::size_t at = 0; at < dry.size(); at += blockSize) {
            const std::size_t size = std::min(blockSize, dry.size() - at);
            const auto block = std::span(wet).subspan(at, size);
            std::copy_n(dry.begin() + static_cast<std::ptrdiff_t>(at), size, block.begin());
            process(block);
        }
        benchmark::ClobberMemory();
    }
    const double spent = GetProcessorMicroseconds() - begin;
    state.counters["us_per_second_of_sound"] = spent / static_cast<double>(state.iterations());
    // The output must be neither silent nor unstable: within 30 dB of the input.
    const double dryPower = GetPower(dry);
    const double wetPower = GetPower(wet);
    if (!(wetPower > dryPower / 1000 && wetPower < dryPower * 1000)) {
        state.SkipWithError("the output level is implausible");
    }
}

void MeasureEffect(benchmark::State& state, Quon::SndFX kind, int channels)
{
    const Quon::SndFXDefault& standard = Quon::GetFXDefault(kind);
    Quon::SndFXList list;
    list.AddFX(kind, standard.record, standard.size, 0);
    Quon::EffectChain chain;
    chain.Build(list, {rateHz, channels});
    list.Clear();
    Measure(state, channels, [&chain](std::span<float> pcm) { chain.Process(pcm); });
}

void MeasureGain(benchmark::State& state)
{
    Measure(state, 1, [](std::span<float> pcm) {
        for (float& sample : pcm) {
            sample *= 0.5F;
        }
    });
}

} // namespace

int main(int argc, char** argv)
{
    for (const NamedEffect& effect : namedEffects) {
        const std::string name = std::string("Effect/") + effect.name;
        benchmark::RegisterBenchmark(name.c_str(), MeasureEffect, effect.kind, 1);
        benchmark::RegisterBenchmark((name + "/stereo").c_str(), MeasureEffect, effect.kind, 2);
    }
    benchmark::RegisterBenchmark("PlainGain", MeasureGain);
#ifdef HARMONET_HAS_OPENAL
    RegisterRooms();
#endif
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
