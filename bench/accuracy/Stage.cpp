#include "bench/accuracy/Stage.h"

#include "drivers/openal/OpenALDriver.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <numbers>
#include <stdexcept>

namespace Accuracy
{

Stage::Stage(int outputHz, const Options& options)
    : rate(outputHz)
    , driver(std::make_unique<Quon::OpenALDriver>())
{
    std::string pattern = (std::filesystem::temp_directory_path() / "harmonet-accuracy-XXXXXX").string();
    path = std::filesystem::path(mkdtemp(pattern.data()));
    os.GetOptions()->Set("OpenALRender", (path / "heard.wav").c_str());
    for (const auto& [name, value] : options) {
        os.GetOptions()->Set(name, value);
    }
    Quon::SoundFormat format;
    format.SetFormat(2, outputHz, 0, 2);
    if (!driver->Open(&os, &format, 500, false)) {
        throw std::runtime_error("the driver does not open");
    }
    driver->SetMaxChannels(64);
}

Stage::~Stage()
{
    driver.reset();
    std::filesystem::remove_all(path);
}

Quon::SndFile& Stage::Make(int rateHz, int sampleFrames, const Formula& formula)
{
    std::vector<std::int16_t>& samples = pcm.emplace_back(static_cast<std::size_t>(sampleFrames));
    for (int i = 0; i < sampleFrames; ++i) {
        samples[static_cast<std::size_t>(i)] = static_cast<std::int16_t>(std::lround(32767.0 * formula(i)));
    }
    Quon::WaveFormatEx wave{};
    wave.formatTag = Quon::waveTagPcm;
    wave.channels = 1;
    wave.samplesPerSecond = static_cast<unsigned>(rateHz);
    wave.bitsPerSample = 16;
    files.push_back(std::make_unique<Quon::SndFileWav>());
    if (!files.back()->OpenMemory(samples.data(), samples.size() * sizeof samples[0], &wave)) {
        throw std::runtime_error("a sound cannot be opened");
    }
    return *files.back();
}

Quon::SndChannel& Stage::Create(Quon::SndFile& file, unsigned int flags, const Quon::SndFXList& fx)
{
    Quon::SndChannel* const channel = driver->CreateChannel(flags, &file, fx);
    if (channel == nullptr) {
        throw std::runtime_error("there is no channel");
    }
    return *channel;
}

void Stage::Step(unsigned long ms, const std::function<void()>& inside)
{
    driver->BeginUpdate(ms);
    if (inside) {
        inside();
    }
    driver->EndUpdate();
}

void Stage::Run(double seconds)
{
    constexpr unsigned long stepMs = 50;
    for (long left = std::lround(seconds * 1000 / stepMs); left > 0; --left) {
        Step(stepMs);
    }
}

Heard Stage::Read() const
{
    constexpr std::streamoff headBytes = 44;
    std::ifstream file(path / "heard.wav", std::ios::binary);
    file.seekg(headBytes);
    Heard heard;
    heard.rateHz = rate;
    std::int16_t both[2];
    while (file.read(reinterpret_cast<char*>(both), sizeof both)) {
        heard.left.push_back(both[0] / 32768.0);
        heard.right.push_back(both[1] / 32768.0);
    }
    return heard;
}

double GetAmplitude(const std::vector<double>& heard, double hz, int rateHz)
{
    // The middle half, where nothing begins or ends.
    const std::size_t begin = heard.size() / 4;
    const std::size_t count = heard.size() / 2;
    double real = 0.0;
    double imaginary = 0.0;
    double weights = 0.0;
    for (std::size_t i = 0; i < count; ++i) {
        const double turn = 2.0 * std::numbers::pi * static_cast<double>(i) / static_cast<double>(count);
        const double weight = std::pow(0.5 - 0.5 * std::cos(turn), 3);
        const double phase = 2.0 * std::numbers::pi * hz * static_cast<double>(i) / rateHz;
        real += weight * heard[begin + i] * std::cos(phase);
        imaginary += weight * heard[begin + i] * std::sin(phase);
        weights += weight;
    }
    return 2.0 * std::hypot(real, imaginary) / weights;
}

double GetDistortion(const std::vector<double>& heard, double hz, int rateHz)
{
    const std::size_t begin = heard.size() / 4;
    const std::size_t end = begin + heard.size() / 2;
    double ss = 0.0, cc = 0.0, sc = 0.0, xs = 0.0, xc = 0.0;
    const auto at = [&](std::size_t i) {
        const double phase = 2.0 * std::numbers::pi * hz * static_cast<double>(i) / rateHz;
        return std::pair(std::sin(phase), std::cos(phase));
    };
    for (std::size_t i = begin; i < end; ++i) {
        const auto [s, c] = at(i);
        ss += s * s;
        cc += c * c;
        sc += s * c;
        xs += heard[i] * s;
        xc += heard[i] * c;
    }
    const double a = (xs * cc - xc * sc) / (ss * cc - sc * sc);
    const double b = (xc * ss - xs * sc) / (ss * cc - sc * sc);
    double rest = 0.0;
    for (std::size_t i = begin; i < end; ++i) {
        const auto [s, c] = at(i);
        rest += std::pow(heard[i] - a * s - b * c, 2);
    }
    return 10.0 * std::log10(rest / static_cast<double>(end - begin) / ((a * a + b * b) / 2.0));
}

double GetLevel(const std::vector<double>& heard, std::size_t begin, std::size_t end)
{
    double sum = 0.0;
    for (std::size_t i = begin; i < end; ++i) {
        sum += heard[i] * heard[i];
    }
    return std::sqrt(sum / static_cast<double>(end - begin));
}

double FindPeak(const std::vector<double>& heard, std::size_t begin, std::size_t end)
{
    std::size_t peak = begin + 1;
    for (std::size_t i = begin + 1; i + 1 < end; ++i) {
        peak = heard[i] > heard[peak] ? i : peak;
    }
    const double before = heard[peak - 1];
    const double after = heard[peak + 1];
    const double bend = before - 2.0 * heard[peak] + after;
    return static_cast<double>(peak) + (bend < 0.0 ? 0.5 * (before - after) / bend : 0.0);
}

double ToDecibels(double factor)
{
    return 20.0 * std::log10(std::max(factor, 1e-10));
}

} // namespace Accuracy
