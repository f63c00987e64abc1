#include "bench/kernel/BenchHost.h"

#include "harmonet/engine/File.h"
#include "harmonet/engine/TaskList.h"
#include "harmonet/files/WaveFormatEx.h"

#include <cstdlib>
#include <fstream>
#include <string>

namespace Bench
{

namespace
{

template<class T>
void WriteRaw(std::ostream& out, const T& value)
{
    out.write(reinterpret_cast<const char*>(&value), sizeof value);
}

void WriteWave(const std::filesystem::path& path, int sampleFrames)
{
    // The record without its last field is what a "fmt " chunk of PCM holds.
    constexpr std::uint32_t formatBytes = 16;
    constexpr int rateHz = WaveFolder::rateHz;
    const auto dataBytes = static_cast<std::uint32_t>(sampleFrames * static_cast<int>(sizeof(std::int16_t)));
    const Quon::WaveFormatEx format{
        Quon::waveTagPcm, 1, rateHz, rateHz * sizeof(std::int16_t), sizeof(std::int16_t), 16, 0};
    std::ofstream out(path, std::ios::binary);
    out << "RIFF";
    WriteRaw(out, std::uint32_t{20 + formatBytes + dataBytes});
    out << "WAVEfmt ";
    WriteRaw(out, formatBytes);
    out.write(reinterpret_cast<const char*>(&format), formatBytes);
    out << "data";
    WriteRaw(out, dataBytes);
    for (int i = 0; i < sampleFrames; ++i) {
        WriteRaw(out, static_cast<std::int16_t>(i % WaveFolder::period));
    }
}

} // namespace

WaveFolder::WaveFolder(int fileCount, int framesOfEach)
{
    std::string pattern = (std::filesystem::temp_directory_path() / "harmonet-bench-XXXXXX").string();
    folder = mkdtemp(pattern.data());
    for (int i = 0; i < fileCount; ++i) {
        const std::string name = std::to_string(i) + ".wav";
        WriteWave(folder / name, framesOfEach);
        names.emplace_back(name.c_str());
    }
    Quon::File::AddRoot(Quon::PString(), folder.c_str());
}

WaveFolder::~WaveFolder()
{
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
}

const Quon::PString& WaveFolder::GetName(int index) const
{
    return names[static_cast<std::size_t>(index) % names.size()];
}

BenchHost::BenchHost(int channels)
{
    os.AddDriverFolder(HARMONET_BENCH_DRIVER_FOLDER);
    Quon::Options& options = *os.GetOptions();
    options.Set("Sound", "HarmonetIdle");
    options.Set("MaxSounds", std::to_string(channels).c_str());
    options.Set("SoundCacheSize", "64000000");
    isRunning = system.Init(&os, false);
    listener.Activate();
}

void BenchHost::Update()
{
    Quon::TaskList::Get().Update(frameSeconds);
}

} // namespace Bench
