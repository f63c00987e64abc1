#include "tests/files/SoundFolder.h"

#include <algorithm>
#include <random>

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

/// Blocks with random codes and headers, the codes large ones in one block out of two.
Bytes RandomBlocks(std::mt19937& random, int channels, int blockAlign, int bytes)
{
    Bytes data;
    bool isWild = false;
    for (int i = 0; i < bytes; ++i) {
        const int offset = i % blockAlign;
        if (offset == 0) {
            isWild = random() % 2 == 0;
        }
        if (offset < channels) {
            data.push_back(static_cast<unsigned char>(random() % usualPairs.size()));
        }
        else {
            data.push_back(static_cast<unsigned char>(isWild ? 0x88 - random() % 2 * 0x11 : random()));
        }
    }
    return data;
}

long long FloorDivide256(long long number)
{
    return number >= 0 ? number / 256 : -((255 - number) / 256);
}

/// All samples of one channel of a block, in wide integers, with divisions in the place of shifts.
std::vector<long long> DecodeChannel(const Bytes& block, std::size_t channels, std::size_t channel)
{
    constexpr long long factors[16] = {
        230, 230, 230, 230, 307, 409, 512, 614, 768, 614, 512, 409, 307, 230, 230, 230};
    const auto field = [&](std::size_t index) {
        const std::size_t at = channels + (index * channels + channel) * 2;
        const int number = block[at] + 256 * block[at + 1];
        return number < 32768 ? number : number - 65536;
    };
    const auto [coef1, coef2] = usualPairs.at(block[channel]);
    long long delta = field(0);
    std::vector<long long> samples = {field(2), field(1)};
    // The high half of a byte comes first; the channels take turns.
    for (std::size_t half = 14 * channels + channel; half < 2 * block.size(); half += channels) {
        const int code = half % 2 == 0 ? block[half / 2] / 16 : block[half / 2] % 16;
        const long long last = samples[samples.size() - 1];
        const long long before = samples[samples.size() - 2];
        const long long predicted = FloorDivide256(last * coef1 + before * coef2);
        const long long step = code < 8 ? code : code - 16;
        samples.push_back(std::clamp(predicted + delta * step, -32768LL, 32767LL));
        delta = std::clamp(FloorDivide256(delta * factors[code]), 16LL, 4194304LL);
    }
    return samples;
}

/// A plain decoder, which holds no state and knows no positions: all blocks from the first to the last.
Bytes DecodePlainly(const Bytes& data, std::size_t channels, std::size_t blockAlign)
{
    Bytes pcm;
    for (std::size_t at = 0; at + 7 * channels <= data.size(); at += blockAlign) {
        const std::size_t end = std::min(at + blockAlign, data.size());
        const Bytes block(data.data() + at, data.data() + end);
        const auto left = DecodeChannel(block, channels, 0);
        const auto right = DecodeChannel(block, channels, channels - 1);
        for (std::size_t frame = 0; frame < left.size(); ++frame) {
            pcm = std::move(pcm) + Little16(left[frame]);
            if (channels == 2) {
                pcm = std::move(pcm) + Little16(right[frame]);
            }
        }
    }
    return pcm;
}

using AdpcmReader = SoundFolder;

TEST_F(AdpcmReader, MatchesSoxBitForBit)
{
    for (const std::string name : {ADPCM_STREAMS "/sox-mono", ADPCM_STREAMS "/sox-stereo"}) {
        SCOPED_TRACE(name);
        const Bytes expected = ReadBytes(name + ".pcm");
        ASSERT_GT(expected.size(), 5000U);
        const auto file = OpenGood(ReadBytes(name + ".wav"));
        EXPECT_EQ(file->FileType(), SndFile::FileAdpcm);
        EXPECT_TRUE(ReadAll(*file, 100) == expected);
    }
}

TEST_F(AdpcmReader, MatchesThePlainDecoderOnWildBlocks)
{
    for (unsigned seed = 1; seed <= 60; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        std::mt19937 random(seed);
        const auto draw = [&](int count) {
            return static_cast<int>(random() % static_cast<unsigned>(count));
        };
        const int channels = 1 + draw(2);
        const int blockAlign = 7 * channels + draw(seed % 4 == 0 ? 3 : 50);
        const Bytes data = RandomBlocks(random, channels, blockAlign, blockAlign * 8 + draw(blockAlign));
        const Bytes pcm =
            DecodePlainly(data, static_cast<std::size_t>(channels), static_cast<std::size_t>(blockAlign));
        const int total = static_cast<int>(pcm.size()) / (2 * channels);
        const int stated = 1 + draw(2 * total);
        const auto file = OpenGood(AdpcmWave(channels, blockAlign, data, Chunk("fact", Little32(stated))));
        EXPECT_LE(file->GetSoundSamples(), std::min(stated, total));
        EXPECT_EQ(ReadAll(*file, 1 + draw(100)), pcm);
        EXPECT_EQ(file->GetCurrentLength(), static_cast<unsigned long>(total) * 1000 / 8000);
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
