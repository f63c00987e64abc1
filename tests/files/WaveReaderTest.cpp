#include "tests/files/SoundFolder.h"

#include "harmonet/files/SndFileAdpcm.h"
#include "harmonet/files/SndFileHandle.h"
#include "harmonet/files/SndFileWav.h"
#include "harmonet/files/SndNode.h"
#include "harmonet/files/WaveProbe.h"

#include <limits>

using namespace Quon;

namespace
{

using WaveReader = SoundFolder;

TEST_F(WaveReader, ASizeBeyondTheEndIsKeptAndReadsEndWithTheFile)
{
    constexpr int mostFrames = std::numeric_limits<int>::max();
    for (const std::uint32_t stated : {1000U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU}) {
        SCOPED_TRACE(stated);
        const auto file = OpenGood(PcmWave(1, 1000, 8, Counting(40), stated));
        const int samples = static_cast<int>(std::min<std::uint32_t>(stated, mostFrames));
        EXPECT_EQ(file->Size(), stated);
        EXPECT_EQ(file->GetSoundSamples(), samples);
        EXPECT_EQ(file->Load(), nullptr) << "the file does not hold that much";
        EXPECT_EQ(ReadAll(*file, 3), Counting(40));
        file->Rewind();
        EXPECT_EQ(file->SkipSamples(mostFrames), samples) << "a skip touches no file";
        EXPECT_EQ(file->SkipSamples(1), 0);
        unsigned char sample = 0;
        EXPECT_EQ(file->ReadSamples(&sample, mostFrames), 0);
        EXPECT_EQ(file->GetRemainLength(), 0U);
        EXPECT_EQ(file->GetCurrentLength(), static_cast<unsigned long>(samples));
    }
}

// A caller who reads beyond the stated samples gets the data that follow in the file; skips end at the
// stated length.
TEST_F(WaveReader, SkipsEndWithTheSoundAndReadsWithTheData)
{
    const auto file = OpenGood(Wave(
        Chunk("fmt ", PcmFormat(1, 8000, 8)) + Chunk("fact", Little32(20)) + Chunk("data", Counting(30))));
    EXPECT_EQ(file->SkipSamples(7), 7);
    EXPECT_EQ(file->SkipSamples(-3), 0);
    EXPECT_EQ(file->ReadSamples(nullptr, -5), 0);
    EXPECT_EQ(ReadFrames(*file, 2), (Bytes{8, 9}));
    EXPECT_EQ(file->SkipSamples(100), 11);
    EXPECT_EQ(file->GetRemainLength(), 0U);
    EXPECT_EQ(ReadFrames(*file, 100).size(), 10U);
    EXPECT_EQ(file->SkipSamples(5), 0);
    EXPECT_EQ(file->GetCurrentSample(), 30);
    file->CloseFile(0, nullptr);
    EXPECT_TRUE(ReadFrames(*file, 1).empty());
    EXPECT_EQ(file->SkipSamples(1), 0);
}

TEST_F(WaveReader, TimesAreTruncatedMilliseconds)
{
    const struct
    {
        std::uint32_t rateHz;
        std::uint32_t frames;
        int position;
        unsigned long length;
        unsigned long current;
        unsigned long remain;
    } rows[] = {
        {44100, 44100, 44, 1000, 0, 999},
        {44100, 45, 45, 1, 1, 0},
        {1, 60000, 59999, 60000000, 59999000, 1000},
        // A length that exceeds 32 bits of milliseconds is unknown.
        {1, 5000000, 0, 0xFFFFFFFF, 0, 0xFFFFFFFF},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::to_string(row.frames) + " at " + std::to_string(row.rateHz));
        const auto file = OpenGood(PcmWave(1, row.rateHz, 8, {}, row.frames));
        EXPECT_EQ(file->SkipSamples(row.position), row.position);
        EXPECT_EQ(file->GetSoundLength(), row.length);
        EXPECT_EQ(file->GetCurrentLength(), row.current);
        EXPECT_EQ(file->GetRemainLength(), row.remain);
    }
}

TEST_F(WaveReader, MemoryIsReadInPlaceAndTheReaderCanBeReopened)
{
    Bytes block = Counting(11);
    WaveFormatEx format = {1, 2, 8000, 0, 0, 16, 0};
    folder.Write("sound", PcmWave(2, 22050, 8, Counting(30)));
    SndFileWav file;
    ASSERT_TRUE(file.OpenMemory(block.data(), block.size(), &format));
    EXPECT_EQ(file.GetSoundSamples(), 2);
    EXPECT_EQ(file.Load(), block.data());
    EXPECT_EQ(ReadFrames(file, 1), (Bytes{1, 2, 3, 4}));
    ASSERT_TRUE(file.OpenHandle(openFiles.Acquire(owner, "sound")));
    ASSERT_NE(file.Load(), nullptr);
    EXPECT_EQ(ReadAll(file), Counting(30));
    ASSERT_TRUE(file.OpenMemory(block.data(), block.size(), &format));
    block[4] = 99;
    EXPECT_EQ(ReadAll(file), (Bytes{1, 2, 3, 4, 99, 6, 7, 8}));
}

TEST_F(WaveReader, MemoryInOtherFormatsIsRefused)
{
    Bytes block = Counting(16);
    WaveFormatEx noChannels = {1, 0, 8000, 0, 0, 16, 0};
    EXPECT_EQ(SndFile::OpenFile(block.data(), 16, &noChannels), nullptr);
    WaveFormatEx format = {1, 1, 8000, 0, 0, 16, 0};
    EXPECT_EQ(SndFile::OpenFile(nullptr, 16, &format), nullptr);
    EXPECT_EQ(SndFile::OpenFile(block.data(), 16, nullptr), nullptr);
    if constexpr (sizeof(unsigned long) > sizeof(std::uint32_t)) {
        const auto bytes = static_cast<unsigned long>(std::uint64_t{1} << 32);
        EXPECT_EQ(SndFile::OpenFile(block.data(), bytes, &format), nullptr);
    }
}

// Coded data without the parameters for decoding are refused, too.
TEST_F(WaveReader, ANodeOfAnotherTypeIsRefusedAndUnchanged)
{
    SndFileWav pcm;
    SndFileAdpcm adpcm;
    SndNode node;
    node.format.SetFormat(2, 8000, 8, 1);
    for (const auto type : {SndFile::FileWav, SndFile::FileMP3, SndFile::FileNone, SndFile::FileAdpcm}) {
        SCOPED_TRACE(type);
        node.fileType = type;
        for (SndFile* const file : {static_cast<SndFile*>(&pcm), static_cast<SndFile*>(&adpcm)}) {
            const bool opens = file == &pcm && type == SndFile::FileWav;
            node.useCount = 2;
            EXPECT_EQ(file->Open(&node), opens);
            file->CloseFile(0, nullptr);
            EXPECT_EQ(node.useCount, opens ? 1 : 2);
        }
    }
    EXPECT_EQ(SndFile::OpenFile(&node), nullptr);
    EXPECT_FALSE(adpcm.OpenMemory(nullptr, 0, nullptr));
}

// A file may be truncated after it was opened: data that it stated are missing.
TEST_F(WaveReader, AFileThatShrinksEndsEarly)
{
    constexpr std::size_t headBytes = 44;
    const auto file = OpenGood(PcmWave(1, 8000, 16, Counting(200)));
    ASSERT_EQ(ReadFrames(*file, 10).size(), 20U);
    folder.Resize("sound", headBytes + 31);
    EXPECT_EQ(file->Load(), nullptr);
    EXPECT_EQ(ReadFrames(*file, 50).size(), 10U) << "the sixteenth frame is torn";
    folder.Resize("sound", 0);
    file->Rewind();
    EXPECT_TRUE(ReadFrames(*file, 50).empty());
    EXPECT_EQ(file->SkipSamples(50), 50);

    // The length of a file is asked once: its chunks must not be walked to where it was.
    folder.Write("walked", Wave(Chunk("JUNK", Bytes(1000)) + Chunk("fmt ", PcmFormat(2, 22050, 16))));
    SndFileHandle* handle = openFiles.Acquire(owner, "walked");
    ASSERT_GT(handle->GetFile().Size(), 1000U);
    folder.Resize("walked", 1016);
    EXPECT_EQ(ProbeWave(handle), 0);
    openFiles.Release(handle);
}

} // namespace
