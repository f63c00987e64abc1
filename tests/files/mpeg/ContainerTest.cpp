// Streams in files: bare, and wrapped in RIFF/WAVE.

#include "MemoryStream.h"
#include "StreamMaker.h"

#include "harmonet/files/SndFileHandle.h"
#include "tests/files/SoundFolder.h"

#include <algorithm>

using namespace Quon;

namespace
{

constexpr int frame = 1152;

class MpegFiles : public SoundFolder
{
protected:
    int Probe(const Bytes& bytes)
    {
        folder.Write("sound", bytes);
        SndFileHandle* handle = openFiles.Acquire(owner, PString("sound"));
        const int type = ProbeMpeg(handle);
        openFiles.Release(handle);
        return type;
    }

    static std::vector<int> ReadValues(SndFile& file) { return ToValues(ReadAll(file, frame)); }
};

Bytes Format(int tag, int bitsPerSample, std::size_t chunkBytes = 30)
{
    Bytes bytes = FormatBytes(tag, 0, 0, 0, bitsPerSample);
    bytes.resize(chunkBytes);
    return Chunk("fmt ", bytes);
}

Bytes RandomFrames(int count)
{
    std::mt19937 random(5);
    return StreamMaker::MakeRandomStream(random, {}, count);
}

TEST_F(MpegFiles, StreamsAreCountedAndPlayAsFromMemory)
{
    const Bytes stream = ReadStream("joint-44100.mp3");
    const std::vector<int> expected = MemoryStream(stream).ReadAll();
    for (const char* name : {"joint-44100.mp3", "wrapped-44100.wav"}) {
        SCOPED_TRACE(name);
        const auto file = OpenBytes(ReadStream(name));
        ASSERT_NE(file, nullptr);
        EXPECT_EQ(file->FileType(), SndFile::FileMP3);
        EXPECT_EQ(file->GetSoundSamples(), 24 * frame);
        EXPECT_EQ(file->GetSoundLength(), 24u * frame * 1000 / 44100);
        EXPECT_EQ(file->GetRemainLength(), file->GetSoundLength());
        EXPECT_EQ(file->CreateNodeInfo(), nullptr);
        EXPECT_EQ(ReadValues(*file), expected);
        EXPECT_EQ(file->GetRemainLength(), 0u);
        // What is wrapped is streamed only.
        ASSERT_EQ(file->Load() != nullptr, file->Size() == stream.size());
        file->Rewind();
        EXPECT_EQ(ReadValues(*file), expected);
    }
}

TEST_F(MpegFiles, TheCountComesFromFactOrFromTheHeaders)
{
    const Bytes frames = RandomFrames(3);
    const Bytes data = Chunk("data", frames);
    const Bytes format = Format(85, 0);
    const auto fact = [](std::uint32_t count) { return Chunk("fact", Little32(count)); };
    struct Row
    {
        const char* what;
        Bytes file;
        int samples;
        std::size_t framesHeard = 3;
    };
    const Row table[] = {
        {"no fact", Wave(format + data), 3 * frame},
        {"a count", Wave(format + fact(2000) + data), 2000},
        {"a count of 0", Wave(format + fact(0) + data), 0},
        {"an unknown count", Wave(format + fact(0xFFFFFFFF) + data), 3 * frame},
        {"fact behind the data", Wave(format + data + fact(2000)), 3 * frame},
        {"fact ahead of the format", Wave(fact(77) + format + data), 77},
        {"data ahead of the format", Wave(data + format), 3 * frame},
        {"no data", Wave(format + Chunk("what", frames)), 3 * frame},
        {"a chunk between", Wave(format + Chunk("LIST", Bytes(7, 1)) + data), 3 * frame},
        {"bare, the last frame torn", {frames.begin(), frames.end() - 100}, 3 * frame, 2},
        {"bare, up to what cannot be played", frames + Bytes{0xFF, 0xFB, 0xF0, 0x00} + frames, 3 * frame},
    };
    for (const Row& row : table) {
        SCOPED_TRACE(row.what);
        EXPECT_EQ(Probe(row.file), 3);
        const auto file = OpenBytes(row.file);
        ASSERT_NE(file, nullptr);
        EXPECT_EQ(file->GetSoundSamples(), row.samples);
        EXPECT_EQ(ReadAll(*file, 4 * frame).size(), row.framesHeard * 2 * frame);
    }
}

TEST_F(MpegFiles, EightBitsWhereTheWrapperDeclaresThem)
{
    const Bytes stream = RandomFrames(3);
    const auto file = OpenBytes(Wave(Format(85, 8) + Chunk("data", stream)));
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(file->GetBytesPerSample(), 1);
    const Bytes pcm8 = ReadAll(*file, frame);
    const std::vector<int> pcm16 = MemoryStream(stream).ReadAll();
    ASSERT_EQ(pcm8.size(), pcm16.size());
    for (std::size_t i = 0; i < pcm8.size(); ++i) {
        // Full scale is 255 here, so that half of it already clips.
        const double expected = std::clamp(pcm16[i] / 32767.0 * 255 + 128, 0.0, 255.0);
        ASSERT_NEAR(pcm8[i], expected, 1.01) << "value " << i;
    }
    const auto silent = OpenBytes(Wave(Format(85, 8) + Chunk("data", StreamMaker::MakeSilentFrame({}))));
    ASSERT_NE(silent, nullptr);
    EXPECT_EQ(ReadAll(*silent, frame), Bytes(frame, 128));
}

TEST_F(MpegFiles, WhatIsNotPlayedIsRefusedAndItsFileClosed)
{
    const Bytes frames = RandomFrames(2);
    const auto withHeader = [&frames](unsigned char first, unsigned char second, unsigned char third) {
        Bytes bytes = frames;
        std::copy_n(Bytes{first, second, third}.begin(), 3, bytes.begin());
        return bytes;
    };
    struct Row
    {
        const char* what;
        Bytes file;
        int probe;
    };
    const Row table[] = {
        {"no sync in the first byte", withHeader(0xFE, 0xFB, 0x90), 0},
        {"no sync in the second byte", withHeader(0xFF, 0xDB, 0x90), 0},
        {"Layer I", withHeader(0xFF, 0xFF, 0x90), 0},
        {"Layer II", withHeader(0xFF, 0xFD, 0x90), 0},
        {"the reserved layer", withHeader(0xFF, 0xF9, 0x90), 0},
        {"MPEG 2.5", withHeader(0xFF, 0xE3, 0x90), 0},
        {"the reserved version", withHeader(0xFF, 0xEB, 0x90), 0},
        {"free format", withHeader(0xFF, 0xFB, 0x00), 0},
        {"the reserved rate", withHeader(0xFF, 0xFB, 0x9C), 0},
        {"the forbidden bitrate", withHeader(0xFF, 0xFB, 0xF0), 3},
        {"a tag ahead of the frames", Bytes{'I', 'D', '3', 3, 0, 0, 0, 0, 0, 0} + frames, 0},
        {"three bytes", {0xFF, 0xFB, 0x90}, 0},
        {"a wrapper with another format", Wave(Format(80, 0) + Chunk("data", frames)), 0},
        {"a format chunk that is too long", Wave(Format(85, 0, 51) + Chunk("data", frames)), 0},
        {"a wrapper without frames", Wave(Format(85, 0) + Chunk("data", Bytes(500, 1))), 3},
    };
    for (const Row& row : table) {
        SCOPED_TRACE(row.what);
        EXPECT_EQ(Probe(row.file), row.probe);
        EXPECT_EQ(Open("sound"), nullptr);
        EXPECT_EQ(openFiles.GetCount(), 0);
    }
    EXPECT_FALSE(SndFileMP3().OpenMemory(nullptr, 0, nullptr));
}

TEST_F(MpegFiles, AnOpenedReaderCanBeOpenedOnAnotherFile)
{
    folder.Write("one", RandomFrames(3));
    folder.Write("two", ReadStream("mono-16000.mp3"));
    SndFileMP3 file;
    ASSERT_TRUE(file.OpenHandle(openFiles.Acquire(owner, PString("one"))));
    ReadAll(file, frame);
    ASSERT_TRUE(file.OpenHandle(openFiles.Acquire(owner, PString("two"))));
    EXPECT_EQ(openFiles.GetCount(), 1);
    EXPECT_EQ(file.GetSampleFrequency(), 16000);
    EXPECT_EQ(ReadValues(file), MemoryStream(ReadStream("mono-16000.mp3")).ReadAll());
}

} // namespace
