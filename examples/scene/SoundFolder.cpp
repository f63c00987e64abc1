#include "examples/scene/SoundFolder.h"

#include "examples/scene/Synthesis.h"

#include <fstream>
#include <string_view>

namespace Scene
{

namespace
{

void WriteNumber(std::ostream& out, std::size_t value, int byteCount)
{
    for (int i = 0; i < byteCount; ++i) {
        out.put(static_cast<char>(value >> (8 * i)));
    }
}

void WriteWave(const std::filesystem::path& path, const Pcm& pcm)
{
    constexpr std::size_t headBytes = 44;
    const std::size_t dataBytes = pcm.size() * sizeof(std::int16_t);
    std::ofstream out;
    out.exceptions(std::ios::failbit | std::ios::badbit);
    out.open(path, std::ios::binary);
    out << "RIFF";
    WriteNumber(out, headBytes - 8 + dataBytes, 4);
    out << "WAVEfmt ";
    WriteNumber(out, 16, 4);
    WriteNumber(out, 1, 2); // PCM
    WriteNumber(out, 1, 2); // one channel
    WriteNumber(out, rateHz, 4);
    WriteNumber(out, rateHz * sizeof(std::int16_t), 4);
    WriteNumber(out, sizeof(std::int16_t), 2);
    WriteNumber(out, 8 * sizeof(std::int16_t), 2);
    out << "data";
    WriteNumber(out, dataBytes, 4);
    for (const std::int16_t sample : pcm) {
        WriteNumber(out, static_cast<std::uint16_t>(sample), sizeof sample);
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
