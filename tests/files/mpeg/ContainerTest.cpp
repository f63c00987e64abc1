// Streams in files: bare, and wrapped in RIFF/WAVE.

#include "MemoryStream.h"
#include "StreamMaker.h"

#include "harmonet/engine/File.h"
#include "harmonet/files/SndFileCache.h"
#include "harmonet/files/SndFileHandle.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace Quon;
using StreamMaker::Bytes;

namespace
{

constexpr int frame = 1152;

class MpegFiles : public testing::Test
{
protected:
    MpegFiles()
    {
        File::AddRoot(owner, folder.GetPath().c_str());
        SndFile::SetSndFileCache(&openFiles);
    }

    ~MpegFiles() override
    {
        SndFile::SetSndFileCache(nullptr);
        File::RemoveRoot(owner);
    }

    std::unique_ptr<SndFile> Open(const Bytes& bytes)
    {
        folder.Write("sound", bytes);
        return std::unique_ptr<SndFile>(SndFile::OpenFile(owner, PString("sound")));
    }

    int Probe(const Bytes& bytes)
    {
        folder.Write("sound", bytes);
        SndFileHandle* handle = openFiles.Acquire(owner, PString("sound"));
        const int type = ProbeMpeg(handle);
        openFiles.Release(handle);
        return type;
    }

    static Bytes ReadPcm(SndFile& file)
    {
        Bytes all;
        Bytes block(4 * frame);
        while (const int delivered = file.ReadSamples(block.data(), frame)) {
            all.insert(all.end(), block.begin(),
                block.begin() + delivered * file.GetChannels() * file.GetBytesPerSample());
        }
        return all;
    }

    const PString owner{"streams"};
    TempFolder folder;
    SndFileCache openFiles;
};

Bytes Chunk(const char* id, const Bytes& content)
{
    const auto size = static_cast<unsigned>(content.size());
    Bytes bytes(id, id + 4);
    for (int shift = 0; shift < 32; shift += 8) {
        bytes.push_back(static_cast<unsigned char>(size >> shift));
    }
    bytes.insert(bytes.end(), content.begin(), content.end());
    bytes.resize(bytes.size() + content.size() % 2);
    return bytes;
}

Bytes Format(int tag, int bitsPerSample, std::size_t chunkBytes = 30)
{
    Bytes bytes(chunkBytes);
    bytes[0] = static_cast<unsigned char>(tag);
    bytes[14] = static_cast<unsigned char>(bitsPerSample);
    return Chunk("fmt ", bytes);
}

Bytes Fact(unsigned count)
{
    return Chunk("fact",
        {static_cast<unsigned char>(count), static_cast<unsigned char>(count >> 8),
            static_cast<unsigned char>(count >> 16), static_cast<unsigned char>(count >> 24)});
}

Bytes Join(std::initializer_list<Bytes> parts)
{
    Bytes all;
    for (const Bytes& part : parts) {
        all.insert(all.end(), part.begin(), part.end());
    }
    return all;
}

Bytes Riff(std::initializer_list<Bytes> chunks)
{
    return Join({{'R', 'I', 'F', 'F', 0, 0, 0, 0, 'W', 'A', 'V', 'E'}, Join(chunks)});
}

Bytes RandomFrames(int count)
{
    std::mt19937 random(5);
    return StreamMaker::MakeRandomStream(random, {}, count);
}

} // namespace

TEST_F(MpegFiles, ABareStreamIsCountedAndPlaysAsFromMemory)
{
    const Bytes stream = ReadStream("joint-44100.mp3");
    const auto file = Open(stream);
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(file->FileType(), SndFile::FileMP3);
    EXPECT_EQ(file->GetSoundSamples(), 24 * frame);
    EXPECT_EQ(file->GetSoundLength(), 24u * frame * 1000 / 44100);
    EXPECT_EQ(file->GetRemainLength(), file->GetSoundLength());
    EXPECT_EQ(file->Size(), stream.size());
    EXPECT_EQ(file->CreateNodeInfo(), nullptr);
    EXPECT_EQ(ToValues(ReadPcm(*file)), MemoryStream(stream).ReadAll());
    EXPECT_EQ(file->GetRemainLength(), 0u);
    ASSERT_NE(file->Load(), nullptr);
    file->Rewind();
    EXPECT_EQ(ToValues(ReadPcm(*file)), MemoryStream(stream).ReadAll());
}

TEST_F(MpegFiles, AWrappedStreamPlaysAsTheBareOne)
{
    const auto file = Open(ReadStream("wrapped-44100.wav"));
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(file->GetSoundSamples(), 24 * frame);
    EXPECT_EQ(ToValues(ReadPcm(*file)), MemoryStream(ReadStream("joint-44100.mp3")).ReadAll());
    EXPECT_EQ(file->Load(), nullptr);
}

TEST_F(MpegFiles, TheCountComesFromFactOrFromTheHeaders)
{
    const Bytes data = Chunk("data", RandomFrames(3));
    const Bytes format = Format(85, 0);
    struct Row
    {
        const char* what;
        Bytes file;
        int samples;
    };
    const Row table[] = {
        {"no fact", Riff({format, data}), 3 * frame},
        {"a count", Riff({format, Fact(2000), data}), 2000},
        {"a count of 0", Riff({format, Fact(0), data}), 0},
        {"an unknown count", Riff({format, Fact(0xFFFFFFFF), data}), 3 * frame},
        {"fact behind the data", Riff({format, data, Fact(2000)}), 3 * frame},
        {"fact ahead of the format", Riff({Fact(77), format, data}), 77},
        {"data ahead of the format", Riff({data, format}), 3 * frame},
        {"no data", Riff({format, Chunk("what", RandomFrames(3))}), 3 * frame},
        {"a chunk between", Riff({format, Chunk("LIST", Bytes(7, 1)), data}), 3 * frame},
    };
    for (const Row& row : table) {
        SCOPED_TRACE(row.what);
        EXPECT_EQ(Probe(row.file), 3);
        const auto file = Open(row.file);
        ASSERT_NE(file, nullptr);
        EXPECT_EQ(file->GetSoundSamples(), row.samples);
        EXPECT_EQ(ReadPcm(*file).size(), 3u * 2 * frame);
    }
}

TEST_F(MpegFiles, ATornLastFrameCountsInTheLength)
{
    const Bytes stream = RandomFrames(3);
    const auto file = Open({stream.begin(), stream.end() - 100});
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(file->GetSoundSamples(), 3 * frame);
    EXPECT_EQ(ReadPcm(*file).size(), 2u * 2 * frame);
}

TEST_F(MpegFiles, TheCountStopsWherePlayingStops)
{
    const Bytes stream = Join({RandomFrames(2), {0xFF, 0xFB, 0xF0, 0x00}, RandomFrames(2)});
    const auto file = Open(stream);
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(file->GetSoundSamples(), 2 * frame);
}

TEST_F(MpegFiles, EightBitsWhereTheWrapperDeclaresThem)
{
    const Bytes stream = RandomFrames(3);
    const auto file = Open(Riff({Format(85, 8), Chunk("data", stream)}));
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(file->GetBytesPerSample(), 1);
    const Bytes pcm8 = ReadPcm(*file);
    const std::vector<int> pcm16 = MemoryStream(stream).ReadAll();
    ASSERT_EQ(pcm8.size(), pcm16.size());
    for (std::size_t i = 0; i < pcm8.size(); ++i) {
        // Full scale is 255 here, so that half of it already clips.
        const double expected = std::clamp(pcm16[i] / 32767.0 * 255 + 128, 0.0, 255.0);
        ASSERT_NEAR(pcm8[i], expected, 1.01) << "value " << i;
    }
    const auto silent = Open(Riff({Format(85, 8), Chunk("data", StreamMaker::MakeSilentFrame({}))}));
    ASSERT_NE(silent, nullptr);
    EXPECT_EQ(ReadPcm(*silent), Bytes(frame, 128));
}

TEST_F(MpegFiles, WhatIsNotPlayedIsRefusedAndItsFileClosed)
{
    const Bytes frames = RandomFrames(2);
    const auto withHeader = [&frames](unsigned char second, unsigned char third) {
        Bytes bytes = frames;
        bytes[1] = second;
        bytes[2] = third;
        return bytes;
    };
    struct Row
    {
        const char* what;
        Bytes file;
        int probe;
    };
    const Row table[] = {
        {"Layer II", withHeader(0xFD, 0x90), 0},
        {"MPEG 2.5", withHeader(0xE3, 0x90), 0},
        {"free format", withHeader(0xFB, 0x00), 0},
        {"the reserved rate", withHeader(0xFB, 0x9C), 0},
        {"the forbidden bitrate", withHeader(0xFB, 0xF0), 3},
        {"a tag ahead of the frames", Join({{'I', 'D', '3', 3, 0, 0, 0, 0, 0, 0}, frames}), 0},
        {"three bytes", {0xFF, 0xFB, 0x90}, 0},
        {"a wrapper with another format", Riff({Format(80, 0), Chunk("data", frames)}), 0},
        {"a format chunk that is too long", Riff({Format(85, 0, 51), Chunk("data", frames)}), 0},
        {"a wrapper without frames", Riff({Format(85, 0), Chunk("data", Bytes(500, 1))}), 3},
    };
    for (const Row& row : table) {
        SCOPED_TRACE(row.what);
        EXPECT_EQ(Probe(row.file), row.probe);
        EXPECT_EQ(Open(row.file), nullptr);
        EXPECT_EQ(openFiles.GetCount(), 0);
    }
    EXPECT_FALSE(SndFileMP3().OpenMemory(nullptr, 0, nullptr));
}

TEST_F(MpegFiles, OnlyTheFirstFourBytesDecideOnABareStream)
{
    EXPECT_EQ(Probe({0xFF, 0xFB, 0x90, 0x00}), 3);
    EXPECT_EQ(Probe({0xFF, 0xF2, 0x10, 0xC0}), 3);
    EXPECT_EQ(Probe({0xFE, 0xFB, 0x90, 0x00}), 0);
}

TEST_F(MpegFiles, AnOpenedReaderCanBeOpenedOnAnotherFile)
{
    folder.Write("one", RandomFrames(3));
    folder.Write("two", ReadStream("mono-16000.mp3"));
    SndFileMP3 file;
    ASSERT_TRUE(file.OpenHandle(openFiles.Acquire(owner, PString("one"))));
    ReadPcm(file);
    ASSERT_TRUE(file.OpenHandle(openFiles.Acquire(owner, PString("two"))));
    EXPECT_EQ(openFiles.GetCount(), 1);
    EXPECT_EQ(file.GetSampleFrequency(), 16000);
    EXPECT_EQ(ToValues(ReadPcm(file)), MemoryStream(ReadStream("mono-16000.mp3")).ReadAll());
}
