// Render/FORM/GRADE: 64 streaming sounds, rendered to a file at 44.1 kHz, as a multiple of real time, by
// elapsed time and by the processor time of all threads. FORM is wave or mp3, mono at 22.05 kHz, or either
// with -stereo, at 44.1 kHz; GRADE is the value of "OpenALResampling". RenderThreads/FORM: the speed of two
// threads relative to one, with the grade "fast", alternating in the same run; both must write the same
// bytes. Live/FORM: 24 streaming sounds on a null device that runs in real time; percent_of_a_core is the
// processor time of all threads relative to the elapsed time, for four seconds after the first two, which are
// percent_at_the_start.

#include "Orchestra.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace
{

constexpr int renderedSounds = 64;
constexpr int liveSounds = 24;
constexpr int frameMs = 50;
constexpr auto startTime = std::chrono::seconds(2); ///< In which the driver learns when the device mixes.
constexpr auto liveTime = std::chrono::seconds(4);

double GetProcessorSeconds()
{
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

/// Returns the RMS level of the first second of a rendered file, relative to full scale. Later parts of the
/// music can be quiet, and where a run ends depends on the machine.
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

std::filesystem::path GetRenderPath()
{
    return std::filesystem::temp_directory_path() / "harmonet-bench-render.wav";
}

void Render(benchmark::State& state, const char* fileName, const char* grade)
{
    const std::filesystem::path path = GetRenderPath();
    bool isComplete = false;
    {
        Bench::Orchestra orchestra(fileName, renderedSounds, path.string(), {{"OpenALResampling", grade}});
        orchestra.Play(1000);
        const auto start = std::chrono::steady_clock::now();
        const double begin = GetProcessorSeconds();
        for (auto step : state) {
            orchestra.Play(frameMs);
        }
        const double spent = GetProcessorSeconds() - begin;
        const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - start;
        const double rendered = static_cast<double>(state.iterations()) * frameMs / 1000.0;
        state.counters["times_real_time"] = rendered / passed.count();
        state.counters["by_processor_time"] = rendered / spent;
        isComplete = orchestra.IsComplete();
    }
    const double level = GetLevelAtStart(path);
    std::filesystem::remove(path);
    if (!isComplete || level < 0.01) {
        state.SkipWithError("not all of the sounds were rendered");
    }
}

/// The time to render ten seconds, and a hash of the output.
struct Rendered
{
    double seconds;
    std::size_t hash;
};

Rendered RenderWithThreads(const char* fileName, const char* threads)
{
    const std::filesystem::path path = GetRenderPath();
    Rendered rendered{};
    {
        Bench::Orchestra orchestra(fileName, renderedSounds, path.string(),
            {{"OpenALResampling", "0"}, {"OpenALRenderThreads", threads}});
        orchestra.Play(1000);
        const auto start = std::chrono::steady_clock::now();
        for (int ms = 0; ms < 10000; ms += frameMs) {
            orchestra.Play(frameMs);
        }
        rendered.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    }
    std::ifstream file(path, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(file), {}};
    rendered.hash = std::hash<std::string>()(bytes);
    std::filesystem::remove(path);
    return rendered;
}

void RenderThreads(benchmark::State& state, const char* fileName)
{
    constexpr int rounds = 5;
    std::vector<double> ratios;
    for (auto step : state) {
        for (int round = 0; round < rounds; ++round) {
            const Rendered one = RenderWithThreads(fileName, "1");
            const Rendered two = RenderWithThreads(fileName, "2");
            if (one.hash != two.hash) {
                state.SkipWithError("the number of threads changes what is rendered");
                return;
            }
            ratios.push_back(one.seconds / two.seconds);
        }
    }
    std::sort(ratios.begin(), ratios.end());
    state.counters["times_as_fast"] = ratios[ratios.size() / 2];
}

// The cost of a stop in the middle of ten minutes of MP3, where the file is moved back to what was heard.
void StopMp3(benchmark::State& state)
{
    const std::filesystem::path path = GetRenderPath();
    double longest = 0.0;
    for (auto step : state) {
        Bench::Orchestra orchestra("mp3-long.mp3", 1, path.string());
        for (int ms = 0; ms < 300000; ms += 1000) {
            orchestra.Play(1000);
        }
        const auto start = std::chrono::steady_clock::now();
        orchestra.StopAll();
        const std::chrono::duration<double, std::micro> passed = std::chrono::steady_clock::now() - start;
        longest = std::max(longest, passed.count());
    }
    std::filesystem::remove(path);
    state.counters["longest_us"] = longest;
}

/// Plays in real time; returns the processor time of all threads in percent of that.
double PlayLive(Bench::Orchestra& orchestra, std::chrono::seconds duration)
{
    const double begin = GetProcessorSeconds();
    const auto start = std::chrono::steady_clock::now();
    for (auto next = start; next < start + duration; next += std::chrono::milliseconds(frameMs)) {
        std::this_thread::sleep_until(next);
        orchestra.Play(frameMs);
    }
    const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - start;
    return 100.0 * (GetProcessorSeconds() - begin) / passed.count();
}

void Live(benchmark::State& state, const char* fileName)
{
    Bench::Orchestra orchestra(fileName, liveSounds, "");
    for (auto step : state) {
        state.counters["percent_at_the_start"] = PlayLive(orchestra, startTime);
        state.counters["percent_of_a_core"] = PlayLive(orchestra, liveTime);
    }
    if (!orchestra.IsComplete()) {
        state.SkipWithError("not all of the sounds play");
    }
}

} // namespace

int main(int argc, char** argv)
{
    // Must be set before OpenAL is initialised: a device without output.
    setenv("ALSOFT_DRIVERS", "null", 1);
    constexpr struct
    {
        const char* form;
        const char* fileName;
    } rows[] = {{"wave", "wave.wav"}, {"mp3", "mp3.mp3"}, {"wave-stereo", "wave-stereo.wav"},
        {"mp3-stereo", "mp3-stereo.mp3"}};
    for (const auto& row : rows) {
        for (const auto& [grade, option] : {std::pair("good", "1"), std::pair("fast", "0")}) {
            benchmark::RegisterBenchmark(
                (std::string("Render/") + row.form + "/" + grade).c_str(), Render, row.fileName, option);
        }
        benchmark::RegisterBenchmark(
            (std::string("RenderThreads/") + row.form).c_str(), RenderThreads, row.fileName)
            ->Iterations(1)
            ->UseRealTime();
        benchmark::RegisterBenchmark((std::string("Live/") + row.form).c_str(), Live, row.fileName)
            ->Iterations(1)
            ->UseRealTime();
    }
    benchmark::RegisterBenchmark("StopMp3", StopMp3)->Iterations(5)->Unit(benchmark::kMillisecond);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
