#include "bench/accuracy/Rows.h"
#include "bench/heard/RenderHost.h"

#include "harmonet/kernel/SoundSystem.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <stdexcept>
#include <thread>

// A device with periods of 1 024 sample frames, which is OpenAL's writer of files: it takes sound at the
// speed of a sound card, and what it took can be read afterwards.

namespace Accuracy
{

namespace
{

using Bench::Samples;
using Clock = std::chrono::steady_clock;

constexpr int deviceHz = 44100;
constexpr double framesPerMs = deviceHz / 1000.0;

void UseFileAsDevice(const Bench::SoundFolder& folder)
{
    const std::filesystem::path configuration = folder.GetOutput().parent_path() / "device.conf";
    std::ofstream(configuration) << "[general]\nperiod_size = 1024\nfrequency = " << deviceHz
                                 << "\n[wave]\nfile = " << folder.GetOutput().string() << "\n";
    setenv("ALSOFT_CONF", configuration.c_str(), 1);
    setenv("ALSOFT_DRIVERS", "wave", 1);
}

Bench::RenderHost::OptionValues GetOptions(const char* keepsStartTimes)
{
    return {
        {"OpenALRender", nullptr}, {"SoundFrequency", "44100"}, {"OpenALKeepStartTimes", keepsStartTimes}};
}

/// A game's clock: hands whole milliseconds to the library and keeps the rest for the next game frame.
class GameClock
{
public:
    /// Until so many milliseconds after the beginning.
    void SleepUntil(double ms) const
    {
        std::this_thread::sleep_until(begin + std::chrono::microseconds(std::llround(1000.0 * ms)));
    }
    double GetMs() const { return std::chrono::duration<double, std::milli>(Clock::now() - begin).count(); }
    void Step(Bench::RenderHost& host)
    {
        const auto due = static_cast<long>(GetMs());
        host.Step((static_cast<float>(due - steppedMs) + 0.01F) / 1000.0F);
        steppedMs = due;
    }

private:
    const Clock::time_point begin = Clock::now();
    long steppedMs = 0;
};

/// Shots of a game with frames of 16.7 ms, one every 66.7 ms: the difference between the largest and the
/// least time from request to sound, in ms.
double MeasureStarts(const Bench::SoundFolder& folder, const char* keepsStartTimes)
{
    constexpr int frames = 400;
    constexpr int framesPerShot = 4;
    constexpr std::size_t warmUp = 30;
    std::vector<double> requests;
    {
        Bench::RenderHost host(folder, 32, GetOptions(keepsStartTimes));
        GameClock clock;
        for (int frame = 0; frame < frames; ++frame) {
            clock.SleepUntil(frame * 1000.0 / 60.0);
            if (frame % framesPerShot == 0 && frame + 40 < frames) {
                requests.push_back(clock.GetMs());
                host.GetSounds().Play2DSound("Shot", nullptr, 0, 0, 0);
            }
            clock.Step(host);
        }
    }
    const Samples heard = folder.ReadOutput().left;
    std::vector<double> latencies;
    for (std::size_t i = 0; i < heard.size() && latencies.size() < requests.size(); ++i) {
        if (heard[i] > 0.25F) {
            latencies.push_back(static_cast<double>(i) / framesPerMs - requests[latencies.size()]);
            i += 1000;
        }
    }
    if (latencies.size() != requests.size()) {
        throw std::runtime_error("not all of the shots are heard");
    }
    const auto begin = latencies.begin() + warmUp;
    std::sort(begin, latencies.end());
    // A busy machine makes a start late now and then.
    return *(begin + (latencies.end() - begin) * 19 / 20) - *begin;
}

/// The largest position error after a return, in ms, of a sound that loses its channel so many times for 200
/// ms. Its level encodes the position.
double MeasureReturns(const Bench::SoundFolder& folder, int losses, double soundFrames)
{
    constexpr int stepMs = 50;
    constexpr int warmUp = 48;
    {
        Bench::RenderHost host(folder, 1, GetOptions("1"));
        host.GetSounds().Play2DSound("Ramp", nullptr, 0, 0, 0);
        int intruder = 0;
        GameClock clock;
        for (int step = 0; step < warmUp + 8 * losses; ++step) {
            clock.SleepUntil(step * stepMs);
            if (step >= warmUp && step % 8 == 4) {
                intruder = host.GetSounds().Play2DSound("Silence", nullptr, 0, 10, 0);
            }
            if (step >= warmUp && step % 8 == 0) {
                host.GetSounds().StopSound(intruder);
            }
            clock.Step(host);
        }
    }
    const Samples heard = folder.ReadOutput().left;
    // When the sound has faded in.
    constexpr std::size_t settledFrames = 60 * deviceHz / 1000;
    double first = 0.0;
    double worst = 0.0;
    int returns = -1;
    std::size_t sounding = 0;
    for (std::size_t i = 0; i < heard.size(); ++i) {
        sounding = heard[i] > 0.05F ? sounding + 1 : 0;
        if (sounding == settledFrames) {
            const double away = (heard[i] - 0.1) / 0.8 * soundFrames - static_cast<double>(i);
            first = ++returns == 0 ? away : first;
            worst = std::max(worst, std::abs(away - first));
        }
    }
    if (returns < losses - 1) {
        throw std::runtime_error("the sound has not lost its channel");
    }
    return worst / framesPerMs;
}

} // namespace

void PrintLive()
{
    const Bench::SoundFolder folder;
    UseFileAsDevice(folder);
    constexpr std::size_t rampFrames = 9 * deviceHz;
    Samples shot(400);
    shot[0] = 0.5F;
    Samples ramp(rampFrames);
    for (std::size_t i = 0; i < ramp.size(); ++i) {
        ramp[i] = 0.1F + 0.8F * static_cast<float>(i) / rampFrames;
    }
    folder.Write("Shot", shot, Bench::Coding::Pcm, deviceHz);
    folder.Write("Ramp", ramp, Bench::Coding::Pcm, deviceHz);
    folder.Write("Silence", Samples(deviceHz), Bench::Coding::Pcm, deviceHz);
    const auto print = [](const char* what, const char* limit, const std::function<double()>& measure) {
        std::array<double, 3> runs{};
        std::generate(runs.begin(), runs.end(), measure);
        std::sort(runs.begin(), runs.end());
        std::printf("| %s | %s | %.2f ms | %.2f ms |\n", what, limit, runs[1], runs[2]);
        std::fflush(stdout);
    };
    std::printf("| what | limit | median of three runs | worst |\n|---|---|---|---|\n");
    print("difference of the latencies of starts", "1 ms", [&] { return MeasureStarts(folder, "1"); });
    print("the same with `OpenALKeepStartTimes` 0", "–", [&] { return MeasureStarts(folder, "0"); });
    print("error of the position over 15 losses of the channel", "2 ms",
        [&] { return MeasureReturns(folder, 15, rampFrames); });
}

} // namespace Accuracy
