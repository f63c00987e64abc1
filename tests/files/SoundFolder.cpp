#include "SoundFolder.h"

#include "harmonet/engine/File.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>

using namespace Quon;

namespace
{

std::filesystem::path MakeFolder()
{
    std::string path = (std::filesystem::temp_directory_path() / "harmonet-files-XXXXXX").string();
    return mkdtemp(path.data());
}

/// Room for a read: what its format asks for, but a file that states frames of half a gigabyte never fills
/// one.
std::size_t RoomFor(const SndFile& file, int frameCount)
{
    constexpr std::size_t mostBytes = std::size_t{1} << 17;
    const std::size_t frameBytes =
        static_cast<std::size_t>(file.GetBytesPerSample()) * static_cast<std::size_t>(file.GetChannels());
    return std::min(mostBytes, frameBytes * static_cast<std::size_t>(frameCount));
}

} // namespace

SoundFolder::SoundFolder()
    : folder(MakeFolder())
{
    File::AddRoot(owner, folder.c_str());
    SndFile::SetSndFileCache(&openFiles);
}

SoundFolder::~SoundFolder()
{
    SndFile::SetSndFileCache(nullptr);
    File::RemoveRoot(owner);
    std::filesystem::remove_all(folder);
}

void SoundFolder::Write(const std::string& name, const Bytes& bytes) const
{
    std::ofstream stream(folder / name, std::ios::binary);
    stream.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

void SoundFolder::Patch(const std::string& name, std::size_t offset, unsigned char byte) const
{
    std::fstream stream(folder / name, std::ios::binary | std::ios::in | std::ios::out);
    stream.seekp(static_cast<std::streamoff>(offset));
    stream.put(static_cast<char>(byte));
}

void SoundFolder::Shorten(const std::string& name, std::size_t bytes) const
{
    std::filesystem::resize_file(folder / name, bytes);
}

std::unique_ptr<SndFile> SoundFolder::Open(const std::string& name) const
{
    return std::unique_ptr<SndFile>(SndFile::OpenFile(owner, PString(name.c_str())));
}

std::unique_ptr<SndFile> SoundFolder::OpenBytes(const Bytes& bytes) const
{
    Write("sound", bytes);
    return Open("sound");
}

Bytes ReadFrames(SndFile& file, int frameCount)
{
    Bytes buffer(RoomFor(file, frameCount));
    const int got = file.ReadSamples(buffer.data(), frameCount);
    EXPECT_GE(got, 0);
    EXPECT_LE(got, frameCount);
    buffer.resize(RoomFor(file, got));
    return buffer;
}

Bytes ReadAll(SndFile& file, int step)
{
    Bytes all;
    for (;;) {
        const Bytes part = ReadFrames(file, step);
        all.insert(all.end(), part.begin(), part.end());
        if (part.size() < RoomFor(file, step))
            return all;
    }
}
