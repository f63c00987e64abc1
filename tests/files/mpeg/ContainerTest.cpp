// Streams in files: bare, and wrapped in RIFF/WAVE.

#include "MemoryStream.h"

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
    std::unique_ptr<SndFile> ProbeAndOpen(const Bytes& bytes, int expectedProbe)
    {
        folder.Write("sound", bytes);
        SndFileHandle* handle = openFiles.Acquire(owner, "sound");
        EXPECT_EQ(ProbeMpeg(handle), expectedProbe);
        openFiles.Release(handle);
        return Open("sound");
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
    return ReadFrames("random-mono", count);
}

TEST_F(MpegFiles, StreamsAreCountedAndPlayAsFromMemory)
{
    const Bytes stream = ReadStream("joint-44100.mp3");
    const std::vector<int> expected = DecodeAll(stream);
    for (const char* name : {"joint-44100.mp3", "wrapped-44100.wav"}) {
        SCOPED_TRACE(name);
        const auto file = OpenGood(ReadStream(name));
        EXPECT_EQ(file->GetSoundSamples(), 24 * frame);
        EXPECT_EQ(file->GetRemainLength(), 24U * frame * 1000 / 44100);
        EXPECT_EQ(file->CreateNodeInfo(), nullptr);
        EXPECT_EQ(ReadValues(*file), expected);
        EXPECT_EQ(file->GetRemainLength(), 0U);
        EXPECT_EQ(file->GetCurrentLength(), file->GetSoundLength());
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
    const struct
    {
        const char* what;
        Bytes file;
        int samples;
        std::size_t framesHeard = 3;
    } rows[] = {
        {"no fact", Wave(format + data), 3 * frame},
        {"a count", Wave(format + fact(2000) + data), 2000},
        {"a count of 0", Wave(format + fact(0) + data), 0},
        {"an unknown count", Wave(format + fact(0xFFFFFFFF) + data), 3 * frame},
        {"fact after the data", Wave(format + data + fact(2000)), 3 * frame},
        {"fact ahead of the format", Wave(fact(77) + format + data), 77},
        {"data ahead of the format", Wave(data + format), 3 * frame},
        {"no data", Wave(format + Chunk("what", frames)), 3 * frame},
        {"a chunk between", Wave(format + Chunk("LIST", Bytes(7, 1)) + data), 3 * frame},
        {"bare, the last frame torn", {frames.begin(), frames.end() - 100}, 3 * frame, 2},
        {"bare, up to what cannot be played", frames + Bytes{0xFF, 0xFB, 0xF0, 0x00} + frames, 3 * frame},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        const auto file = ProbeAndOpen(row.file, 3);
        ASSERT_NE(file, nullptr);
        EXPECT_EQ(file->GetSoundSamples(), row.samples);
        EXPECT_EQ(ReadAll(*file, 4 * frame).size(), row.framesHeard * 2 * frame);
    }
}

TEST_F(MpegFiles, EightBitOutputFollowsTheWrapper)
{
    const Bytes fact = Chunk("fact", Little32(2 * frame));
    const Bytes silence = Wave(Format(85, 8) + Chunk("data", MakeSilentFrame()));
    EXPECT_EQ(ReadAll(*OpenGood(silence), frame), Bytes(frame, 128));
    const Bytes change = MakeSilentFrame() + MakeSilentFrame(0);
    EXPECT_EQ(
        ReadAll(*OpenGood(Wave(Format(85, 8) + fact + Chunk("data", change))), 1), Bytes(2 * frame, 128));
    const Bytes stream = RandomFrames(3);
    const auto file = OpenGood(Wave(Format(85, 8) + Chunk("data", stream)));
    EXPECT_EQ(file->GetBytesPerSample(), 1);
    const Bytes pcm8 = ReadAll(*file, frame);
    const std::vector<int> pcm16 = DecodeAll(stream);
    ASSERT_EQ(pcm8.size(), pcm16.size());
    for (std::size_t i = 0; i < pcm8.size(); ++i) {
        // Full scale is 255 here, so that half of it already clips.
        const double expected = std::clamp(pcm16[i] / 32767.0 * 255 + 128, 0.0, 255.0);
        ASSERT_NEAR(pcm8[i], expected, 1.01) << "value " << i;
    }
}

TEST_F(MpegFiles, UnsupportedStreamsAreRefusedAndClosed)
{
    const Bytes frames = RandomFrames(2);
    const auto withHeader = [&frames](unsigned char second, unsigned char third) {
        return Bytes{0xFF, second, third} + Bytes(frames.begin() + 3, frames.end());
    };
    const struct
    {
        const char* what;
        Bytes file;
        int probe = 0;
    } rows[] = {
        {"no sync in the first byte", Bytes{0xFE} + Bytes(frames.begin() + 1, frames.end())},
        {"no sync in the second byte", withHeader(0xDB, 0x90)},
        {"Layer I", withHeader(0xFF, 0x90)},
        {"the reserved layer", withHeader(0xF9, 0x90)},
        {"the reserved version", withHeader(0xEB, 0x90)},
        {"free format", withHeader(0xFB, 0x00)},
        {"the reserved rate", withHeader(0xFB, 0x9C)},
        {"the forbidden bitrate", withHeader(0xFB, 0xF0), 3},
        {"three bytes", {0xFF, 0xFB, 0x90}},
        {"a wrapper with another format", Wave(Format(80, 0) + Chunk("data", frames))},
        {"a format chunk that is too long", Wave(Format(85, 0, 51) + Chunk("data", frames))},
        {"a wrapper without frames", Wave(Format(85, 0) + Chunk("data", Bytes(500, 1))), 3},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        EXPECT_EQ(ProbeAndOpen(row.file, row.probe), nullptr);
        EXPECT_EQ(openFiles.GetCount(), 0);
    }
    EXPECT_FALSE(SndFileMP3().OpenMemory(nullptr, 0, nullptr));
}

TEST_F(MpegFiles, AReaderCanBeReopenedOnAnotherFile)
{
    folder.Write("one", RandomFrames(3));
    folder.Write("two", ReadStream("mono-16000.mp3"));
    SndFileMP3 file;
    ASSERT_TRUE(file.OpenHandle(openFiles.Acquire(owner, "one")));
    // Only in part, so that more of it has been read ahead.
    Bytes buffer(4);
    EXPECT_EQ(file.ReadSamples(buffer.data(), 1), 1);
    ASSERT_TRUE(file.OpenHandle(openFiles.Acquire(owner, "two")));
    EXPECT_EQ(openFiles.GetCount(), 1);
    EXPECT_EQ(file.GetSampleFrequency(), 16000);
    EXPECT_EQ(file.GetSoundSamples(), Open("two")->GetSoundSamples());
    EXPECT_EQ(ReadValues(file), DecodeAll(ReadStream("mono-16000.mp3")));
}

} // namespace
