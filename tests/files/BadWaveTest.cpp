#include "tests/files/SoundFolder.h"

#include <random>

using namespace Quon;

namespace
{

struct Sample
{
    const char* name;
    Bytes bytes;
    std::size_t headBytes;
    int channels;
};

Sample SmallPcm()
{
    const Bytes head =
        Chunk("fmt ", PcmFormat(2, 8000, 16)) + Chunk("LIST", Bytes(3)) + Chunk("fact", Little32(9));
    const Bytes bytes = Wave(head) + Chunk("data", Counting(37)) + Chunk("cue ", Bytes(6));
    return {"PCM", bytes, 12 + head.size() + 8, 2};
}

Sample SmallAdpcm(int channels)
{
    const int blockAlign = channels == 1 ? 15 : 24;
    Bytes data = Counting(static_cast<std::size_t>(blockAlign * 3 - 4));
    for (std::size_t at = 0; at < data.size(); at += static_cast<std::size_t>(blockAlign)) {
        data[at] = 1;
        data[at + 1] = 5;
    }
    const Bytes head =
        Chunk("fmt ", AdpcmFormat(channels, 8000, blockAlign, usualPairs)) + Chunk("fact", Little32(40));
    const Bytes bytes = Wave(head) + Chunk("data", data);
    return {channels == 1 ? "mono ADPCM" : "stereo ADPCM", bytes, 12 + head.size() + 8, channels};
}

/// All that a sound does with a reader; what comes out the second time has to be what came out the first
/// time.
void PlayThrough(SndFile& file)
{
    const Bytes pcm = ReadAll(file, 7);
    EXPECT_LE(pcm.size(), std::size_t{1} << 16) << "more came out than ever went in";
    file.Rewind();
    EXPECT_EQ(ReadAll(file, 64), pcm);
    file.Rewind();
    ReadFrames(file, 5);
    const int skipped = file.SkipSamples(6);
    EXPECT_GE(skipped, 0);
    EXPECT_LE(skipped, 6);
    ReadFrames(file, 3);
    EXPECT_LE(file.SkipSamples(1'000'000), std::max(file.GetSoundSamples(), 0));
    ReadFrames(file, 3);
    file.GetRemainLength();
    file.GetCurrentLength();
    file.Rewind();
    if (file.Load() != nullptr) {
        const Bytes loaded = ReadAll(file, 9);
        EXPECT_TRUE(loaded.size() <= pcm.size() && std::equal(loaded.begin(), loaded.end(), pcm.begin()))
            << "from memory it sounds otherwise";
    }
}

class BadWaves : public SoundFolder
{
protected:
    void OpenAndPlay()
    {
        if (const auto file = Open("sound"))
            PlayThrough(*file);
        ASSERT_EQ(openFiles.GetCount(), 0) << "the file stayed open";
    }

    const std::vector<Sample> samples = {SmallPcm(), SmallAdpcm(1), SmallAdpcm(2)};
};

// A broken download or a full disk leaves any prefix of a good file. Each must be refused or played short;
// the address sanitizer watches the edges.
TEST_F(BadWaves, EveryTruncationIsRefusedOrPlayedShort)
{
    for (const Sample& sample : samples) {
        folder.Write("sound", sample.bytes);
        const auto good = Open("sound");
        ASSERT_NE(good, nullptr);
        const Bytes whole = ReadAll(*good);
        good->CloseFile(0, nullptr);
        for (std::size_t kept = sample.bytes.size(); kept-- > 0;) {
            SCOPED_TRACE(std::string(sample.name) + ", kept " + std::to_string(kept) + " bytes");
            folder.Resize("sound", kept);
            const auto file = Open("sound");
            ASSERT_EQ(file != nullptr, kept >= sample.headBytes);
            if (file == nullptr)
                continue;
            const Bytes pcm = ReadAll(*file);
            EXPECT_TRUE(pcm.size() <= whole.size() && std::equal(pcm.begin(), pcm.end(), whole.begin()));
            file->Rewind();
            PlayThrough(*file);
        }
    }
}

TEST_F(BadWaves, EverySingleByteChangeIsRefusedOrPlayed)
{
    for (const Sample& sample : samples) {
        folder.Write("sound", sample.bytes);
        for (std::size_t offset = 0; offset < sample.bytes.size(); ++offset) {
            for (int change = 1; change < 256; ++change) {
                const auto byte = static_cast<unsigned char>(sample.bytes[offset] ^ change);
                SCOPED_TRACE(std::string(sample.name) + ", byte " + std::to_string(offset) + " is " +
                    std::to_string(byte));
                Patch("sound", offset, byte);
                OpenAndPlay();
            }
            Patch("sound", offset, sample.bytes[offset]);
        }
    }
}

TEST_F(BadWaves, SeveralRandomChangesAtOnceAreRefusedOrPlayed)
{
    constexpr unsigned char telling[] = {0, 1, 2, 0x7F, 0x80, 0xFF};
    std::mt19937 random(20);
    for (const Sample& sample : samples) {
        folder.Write("sound", sample.bytes);
        for (int round = 0; round < 3000; ++round) {
            SCOPED_TRACE(std::string(sample.name) + ", round " + std::to_string(round));
            std::vector<std::size_t> changed;
            for (int change = 0; change < 4; ++change) {
                changed.push_back(random() % sample.bytes.size());
                Patch("sound", changed.back(), telling[random() % sizeof telling]);
            }
            OpenAndPlay();
            for (const std::size_t offset : changed)
                Patch("sound", offset, sample.bytes[offset]);
        }
    }
}

} // namespace
