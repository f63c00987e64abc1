#include "bench/kernel/BenchHost.h"

#include "harmonet/engine/File.h"
#include "harmonet/engine/TaskList.h"
#include "harmonet/files/WaveHeader.h"

#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

namespace Bench
{

namespace
{

void WriteWave(const std::filesystem::path& path, int sampleFrames)
{
    std::vector<std::int16_t> samples(static_cast<std::size_t>(sampleFrames));
    for (std::size_t i = 0; i < samples.size(); ++i) {
        samples[i] = static_cast<std::int16_t>(i % WaveFolder::period);
    }
    const std::size_t dataBytes = samples.size() * sizeof samples[0];
    Quon::SoundFormat format;
    format.SetFormat(sizeof samples[0], WaveFolder::rateHz, 0, 1);
    const auto header = Quon::MakeWaveHeader(format, dataBytes);
    std::ofstream out(path, std::ios::binary);
    out.write(reinterpret_cast<const char*>(header.data()), header.size());
    out.write(reinterpret_cast<const char*>(samples.data()), static_cast<std::streamsize>(dataBytes));
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
