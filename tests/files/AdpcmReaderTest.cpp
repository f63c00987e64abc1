#include "tests/files/SoundFolder.h"

using namespace Quon;

namespace
{

/// A file that ends with its data, without the pad byte that a reader of the file would take for a code.
Bytes AdpcmWave(int channels, int blockAlign, const Bytes& data, const Bytes& fact = {})
{
    const Bytes format = AdpcmFormat(channels, 8000, blockAlign, usualPairs);
    Bytes wave = Wave(Chunk("fmt ", format) + fact) + Chunk("data", data);
    if (data.size() % 2 != 0) {
        wave.pop_back();
    }
    return wave;
}

using AdpcmReader = SoundFolder;

// What sox decodes, and random codes by a decoder in another language (adpcm/MakeStreams.py).
TEST_F(AdpcmReader, MatchesOtherDecodersBitForBit)
{
    for (const char* name : {"sox-mono", "sox-stereo", "wild-mono", "wild-stereo", "wild-tiny", "wild-odd"}) {
        SCOPED_TRACE(name);
        const std::string path = std::string(ADPCM_STREAMS "/") + name;
        const Bytes expected = ReadBytes(path + ".pcm");
        ASSERT_GT(expected.size(), 100U);
        const auto file = OpenGood(ReadBytes(path + ".wav"));
        EXPECT_EQ(file->FileType(), SndFile::FileAdpcm);
        for (const int step : {100, 7}) {
            EXPECT_TRUE(ReadAll(*file, step) == expected);
            file->Rewind();
        }
    }
}

// The stated length cannot be reached: the position returns to the end of the data.
TEST_F(AdpcmReader, ASkipBeyondTheLastBlockStopsAtTheEnd)
{
    const Bytes format = Chunk("fmt ", AdpcmFormat(1, 8000, 20, usualPairs));
    const auto file = OpenGood(Wave(format + Chunk("data", Bytes(40), 400)));
    EXPECT_EQ(file->GetSoundSamples(), 560);
    ASSERT_EQ(ReadFrames(*file, 56).size(), 112U);
    EXPECT_EQ(file->SkipSamples(10), 10);
    EXPECT_EQ(file->GetCurrentSample(), 66);
    EXPECT_TRUE(ReadFrames(*file, 1).empty());
    EXPECT_EQ(file->GetCurrentSample(), 56);
}

TEST_F(AdpcmReader, ABlockWithInvalidCoefficientsEndsReadsUntilARewind)
{
    for (const std::size_t channel : {0U, 1U}) {
        SCOPED_TRACE(channel);
        Bytes data(100);
        data[20 + channel] = 7;
        const auto file = OpenGood(AdpcmWave(2, 20, data));
        for (int round = 0; round < 2; ++round) {
            EXPECT_EQ(ReadFrames(*file, 30).size(), 8U * 4);
            EXPECT_TRUE(ReadFrames(*file, 30).empty());
            EXPECT_EQ(file->SkipSamples(16), 16);
            EXPECT_TRUE(ReadFrames(*file, 30).empty());
            file->Rewind();
        }
        EXPECT_EQ(file->SkipSamples(16), 16);
        EXPECT_EQ(ReadFrames(*file, 30).size(), 24U * 4);
    }
    // No coefficients at all are no reason to refuse a file.
    const Bytes noPairs = Chunk("fmt ", AdpcmFormat(1, 8000, 20, {}));
    EXPECT_TRUE(ReadFrames(*OpenGood(Wave(noPairs + Chunk("data", Bytes(100)))), 10).empty());
}

} // namespace
