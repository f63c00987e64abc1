#include "examples/scene/SoundFolder.h"

#include "examples/scene/Synthesis.h"
#include "harmonet/files/WaveHeader.h"

#include <fstream>

namespace Scene
{

namespace
{

void WriteWave(const std::filesystem::path& path, const Pcm& pcm)
{
    Quon::SoundFormat format;
    format.SetFormat(sizeof(Pcm::value_type), rateHz, 0, 1);
    const std::size_t dataBytes = pcm.size() * sizeof(Pcm::value_type);
    const auto header = Quon::MakeWaveHeader(format, dataBytes);
    std::ofstream out;
    out.exceptions(std::ios::failbit | std::ios::badbit);
    out.open(path, std::ios::binary);
    out.write(reinterpret_cast<const char*>(header.data()), header.size());
    for (const std::int16_t sample : pcm) {
        // Little-endian on every machine.
        out.put(static_cast<char>(sample));
        out.put(static_cast<char>(sample >> 8));
    }
    out.close();
}

} // namespace

void FillSoundFolder(const std::filesystem::path& recordings, const std::filesystem::path& folder)
{
    namespace fs = std::filesystem;
    fs::create_directories(folder);
    for (const fs::directory_entry& entry : fs::directory_iterator(recordings)) {
        fs::copy_file(entry.path(), folder / entry.path().filename(), fs::copy_options::overwrite_existing);
    }
    for (const MadeSound& sound : MakeSounds()) {
        WriteWave(folder / sound.fileName, sound.pcm);
    }
}

} // namespace Scene
