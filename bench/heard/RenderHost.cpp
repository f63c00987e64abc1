#include "bench/heard/RenderHost.h"

#include "harmonet/engine/File.h"
#include "harmonet/engine/TaskList.h"

#include <cstdlib>
#include <memory>
#include <sndfile.h>
#include <stdexcept>

namespace Bench
{

namespace
{

using SoundFilePointer = std::unique_ptr<SNDFILE, int (*)(SNDFILE*)>;

SoundFilePointer OpenSoundFile(const std::filesystem::path& path, int mode, SF_INFO& info)
{
    SoundFilePointer file(sf_open(path.c_str(), mode, &info), sf_close);
    if (!file) {
        throw std::runtime_error(path.string() + ": " + sf_strerror(nullptr));
    }
    return file;
}

Stereo ReadSides(const std::filesystem::path& path)
{
    SF_INFO info{};
    const SoundFilePointer file = OpenSoundFile(path, SFM_READ, info);
    const auto width = static_cast<std::size_t>(info.channels);
    std::vector<float> all(static_cast<std::size_t>(info.frames) * width);
    const sf_count_t frames = sf_readf_float(file.get(), all.data(), info.frames);
    Stereo sides;
    for (std::size_t i = 0; i < static_cast<std::size_t>(frames); ++i) {
        sides.left.push_back(all[width * i]);
        sides.right.push_back(all[width * i + width - 1]);
    }
    return sides;
}

int GetFormat(Coding coding)
{
    switch (coding) {
    case Coding::Adpcm:
        return SF_FORMAT_WAV | SF_FORMAT_MS_ADPCM;
    case Coding::Mp3:
        return SF_FORMAT_MPEG | SF_FORMAT_MPEG_LAYER_III;
    default:
        return SF_FORMAT_WAV | SF_FORMAT_PCM_16;
    }
}

} // namespace

SoundFolder::SoundFolder()
{
    std::string pattern = (std::filesystem::temp_directory_path() / "harmonet-heard-XXXXXX").string();
    folder = mkdtemp(pattern.data());
    Quon::File::AddRoot(Quon::PString(), folder.c_str());
    // A user's own settings of OpenAL would show in what is rendered.
    for (const char* name : {"HOME", "XDG_CONFIG_HOME", "XDG_CONFIG_DIRS"}) {
        setenv(name, folder.c_str(), 1);
    }
}

SoundFolder::~SoundFolder()
{
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
}

void SoundFolder::Write(const std::string& name, const Samples& samples, Coding coding, int fileHz) const
{
    SF_INFO info{};
    info.samplerate = fileHz;
    info.channels = 1;
    info.format = GetFormat(coding);
    const SoundFilePointer file = OpenSoundFile(folder / name, SFM_WRITE, info);
    const auto count = static_cast<sf_count_t>(samples.size());
    if (sf_write_float(file.get(), samples.data(), count) != count) {
        throw std::runtime_error(name + " could not be written");
    }
}

Samples SoundFolder::Read(const std::string& name) const
{
    return ReadSides(folder / name).left;
}

Stereo SoundFolder::ReadOutput() const
{
    return ReadSides(GetOutput());
}

RenderHost::RenderHost(const SoundFolder& folder, int channels, const OptionValues& others)
{
    Quon::Options& options = *os.GetOptions();
    options.Set("Sound", "HarmonetOpenAL");
    options.Set("OpenALRender", folder.GetOutput().c_str());
    options.Set("MaxSounds", std::to_string(channels).c_str());
    options.Set("SoundFrequency", std::to_string(rateHz).c_str());
    options.Set("SoundCacheSize", "64000000");
    for (const auto& [name, value] : others) {
        options.Set(name, value);
    }
    if (!system.Init(&os, false)) {
        throw std::runtime_error("the sound system does not start");
    }
    listener.Activate();
}

void RenderHost::Step(float seconds)
{
    Quon::TaskList::Get().Update(seconds);
}

} // namespace Bench
