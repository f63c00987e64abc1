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
};

Sample SmallPcm()
{
    const Bytes head =
        Chunk("fmt ", PcmFormat(2, 8000, 16)) + Chunk("LIST", Bytes(3)) + Chunk("fact", Little32(9));
    return {"PCM", Wave(head) + Chunk("data", Counting(37)) + Chunk("cue ", Bytes(6)), 12 + head.size() + 8};
}

Sample SmallAdpcm(const char* name, int channels, int blockAlign)
{
    const Bytes block = Counting(static_cast<std::size_t>(blockAlign));
    const Bytes data = block + block + Bytes(block.begin(), block.end() - 4);
    const Bytes head =
        Chunk("fmt ", AdpcmFormat(channels, 8000, blockAlign, usualPairs)) + Chunk("fact", Little32(40));
    return {name, Wave(head) + Chunk("data", data), 12 + head.size() + 8};
}

bool IsFrontOf(const Bytes& part, const Bytes& whole)
{
    return part.size() <= whole.size() && std::equal(part.begin(), part.end(), whole.begin());
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
        EXPECT_TRUE(IsFrontOf(ReadAll(file, 9), pcm)) << "from memory it sounds otherwise";
    }
}

class BadWaves : public SoundFolder
{
protected:
    void OpenAndPlay(const Bytes& bytes) const
    {
        if (const auto file = OpenBytes(bytes))
            PlayThrough(*file);
        ASSERT_EQ(openFiles.GetCount(), 0) << "the file stayed open";
    }

    const std::vector<Sample> samples = {
        SmallPcm(), SmallAdpcm("mono ADPCM", 1, 15), SmallAdpcm("stereo ADPCM", 2, 24)};
};

// A broken download or a full disk leaves any prefix of a good file. Each must be refused or played short;
// the address sanitizer watches the edges.
TEST_F(BadWaves, EveryTruncationIsRefusedOrPlayedShort)
{
    for (const Sample& sample : samples) {
        const Bytes whole = ReadAll(*OpenGood(sample.bytes));
        Bytes kept;
        for (const unsigned char next : sample.bytes) {
            SCOPED_TRACE(std::string(sample.name) + ", kept " + std::to_string(kept.size()) + " bytes");
            const auto file = OpenBytes(kept);
            ASSERT_EQ(file != nullptr, kept.size() >= sample.headBytes);
            if (file != nullptr) {
                EXPECT_TRUE(IsFrontOf(ReadAll(*file), whole));
                file->Rewind();
                PlayThrough(*file);
            }
            kept.push_back(next);
        }
    }
}

TEST_F(BadWaves, EverySingleByteChangeIsRefusedOrPlayed)
{
    for (const Sample& sample : samples) {
        for (std::size_t offset = 0; offset < sample.bytes.size(); ++offset) {
            for (int value = 0; value < 256; ++value) {
                SCOPED_TRACE(std::string(sample.name) + ", byte " + std::to_string(offset) + " is " +
                    std::to_string(value));
                Bytes bytes = sample.bytes;
                bytes[offset] = static_cast<unsigned char>(value);
                OpenAndPlay(bytes);
            }
        }
    }
}

TEST_F(BadWaves, SeveralRandomChangesAtOnceAreRefusedOrPlayed)
{
    constexpr unsigned char telling[] = {0, 1, 2, 0x7F, 0x80, 0xFF};
    std::mt19937 random(20);
    for (const Sample& sample : samples) {
        for (int round = 0; round < 3000; ++round) {
            SCOPED_TRACE(std::string(sample.name) + ", round " + std::to_string(round));
            Bytes bytes = sample.bytes;
            for (int change = 0; change < 4; ++change)
                bytes[random() % bytes.size()] = telling[random() % sizeof telling];
            OpenAndPlay(bytes);
        }
    }
}

} // namespace
