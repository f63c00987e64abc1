#include "tests/files/SoundFolder.h"

#include "harmonet/engine/File.h"

#include <algorithm>
#include <stdexcept>

using namespace Quon;

namespace
{

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
{
    File::AddRoot(owner, folder.GetPath().string().c_str());
    SndFile::SetSndFileCache(&openFiles);
}

SoundFolder::~SoundFolder()
{
    SndFile::SetSndFileCache(nullptr);
    File::RemoveRoot(owner);
}

std::unique_ptr<SndFile> SoundFolder::Open(const std::string& name) const
{
    return std::unique_ptr<SndFile>(SndFile::OpenFile(owner, PString(name.c_str())));
}

std::unique_ptr<SndFile> SoundFolder::OpenBytes(const Bytes& bytes) const
{
    EXPECT_EQ(openFiles.GetCount(), 0) << "the old file would be found again";
    // To empty a file and write it anew takes the system ten times as long.
    folder.Remove("sound");
    folder.Write("sound", bytes);
    return Open("sound");
}

std::unique_ptr<SndFile> SoundFolder::OpenGood(const Bytes& bytes) const
{
    auto file = OpenBytes(bytes);
    EXPECT_NE(file, nullptr);
    if (file == nullptr) {
        throw std::runtime_error("nothing to go on with");
    }
    return file;
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
    Bytes part;
    do {
        part = ReadFrames(file, step);
        all.insert(all.end(), part.begin(), part.end());
    } while (part.size() >= RoomFor(file, step));
    return all;
}
