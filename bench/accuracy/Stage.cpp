#include "bench/accuracy/Stage.h"

#include "drivers/openal/OpenALDriver.h"

#include <cmath>
#include <cstdlib>
#include <fstream>
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

} // namespace Accuracy
