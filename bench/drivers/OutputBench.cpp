// Render/FORM: 64 sounds that are read while they play, rendered into a file at 44.1 kHz; times_real_time is
// the length of what was rendered over the processor time it took. Live/FORM: 24 of them on a device that
// takes sound at the speed of a sound card; percent_of_a_core is the processor time of all threads over the
// time that went by. FORM is wave or mp3, both mono at 22.05 kHz, or one of them in stereo at 44.1 kHz.

#include "Orchestra.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <thread>
#include <vector>

namespace
{

constexpr int renderedSounds = 64;
constexpr int liveSounds = 24;
constexpr int frameMs = 50;
constexpr auto liveTime = std::chrono::seconds(4);

double GetProcessorSeconds()
{
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

/// The root of the mean square of the first second of a rendered file, in parts of full scale. The music has
/// quiet places, and where a run ends depends on the machine.
double GetLevelAtStart(const std::filesystem::path& path)
{
    std::vector<std::int16_t> samples(2 * Bench::Orchestra::rateHz);
    const auto bytes = static_cast<std::streamsize>(samples.size() * sizeof(std::int16_t));
    constexpr std::streamoff headBytes = 44;
    std::ifstream file(path, std::ios::binary);
    file.seekg(headBytes);
    if (!file.read(reinterpret_cast<char*>(samples.data()), bytes)) {
        return 0.0;
    }
    double sum = 0.0;
    for (const std::int16_t sample : samples) {
        sum += double{static_cast<double>(sample)} * sample;
    }
    return std::sqrt(sum / static_cast<double>(samples.size())) / 32768.0;
}

void Render(benchmark::State& state, const char* fileName)
{
    const auto path = std::filesystem::temp_directory_path() / "harmonet-bench-render.wav";
    bool isComplete = false;
    {
        Bench::Orchestra orchestra(fileName, renderedSounds, path.string());
        orchestra.Play(1000);
        const double begin = GetProcessorSeconds();
        for (auto step : state) {
            orchestra.Play(frameMs);
        }
        const double spent = GetProcessorSeconds() - begin;
        const double rendered = static_cast<double>(state.iterations()) * frameMs / 1000.0;
        state.counters["times_real_time"] = rendered / spent;
        isComplete = orchestra.IsComplete();
    }
    const double level = GetLevelAtStart(path);
    std::filesystem::remove(path);
    if (!isComplete || level < 0.01) {
        state.SkipWithError("not all of the sounds were rendered");
    }
}

void Live(benchmark::State& state, const char* fileName)
{
    Bench::Orchestra orchestra(fileName, liveSounds, "");
    for (auto step : state) {
        const double begin = GetProcessorSeconds();
        const auto start = std::chrono::steady_clock::now();
        for (auto next = start; next < start + liveTime; next += std::chrono::milliseconds(frameMs)) {
            std::this_thread::sleep_until(next);
            orchestra.Play(frameMs);
        }
        const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - start;
        state.counters["percent_of_a_core"] = 100.0 * (GetProcessorSeconds() - begin) / passed.count();
    }
    if (!orchestra.IsComplete()) {
        state.SkipWithError("not all of the sounds play");
    }
}

} // namespace

int main(int argc, char** argv)
{
    // Before OpenAL is used: a device that plays to nobody.
    setenv("ALSOFT_DRIVERS", "null", 1);
    constexpr struct
    {
        const char* form;
        const char* fileName;
    } rows[] = {{"wave", "wave.wav"}, {"mp3", "mp3.mp3"}, {"wave-stereo", "wave-stereo.wav"},
        {"mp3-stereo", "mp3-stereo.mp3"}};
    for (const auto& row : rows) {
        benchmark::RegisterBenchmark((std::string("Render/") + row.form).c_str(), Render, row.fileName);
        benchmark::RegisterBenchmark((std::string("Live/") + row.form).c_str(), Live, row.fileName)
            ->Iterations(1)
            ->UseRealTime();
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
