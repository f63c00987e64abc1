#include "tests/files/AdpcmModel.h"
#include "tests/files/SoundFolder.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <limits>
#include <random>

using namespace Quon;

namespace
{

Bytes ReadStream(const std::string& name)
{
    std::ifstream stream(std::string(ADPCM_STREAMS "/") + name, std::ios::binary);
    return Bytes(std::istreambuf_iterator<char>(stream), {});
}

/// A file that ends with its data, without the pad byte that a reader of the file would take for a code.
Bytes AdpcmWave(const AdpcmLayout& layout, const Bytes& data, const Bytes& fact = {})
{
    const Bytes format = AdpcmFormat(layout.channels, 8000, layout.blockAlign, layout.pairs);
    Bytes wave = Wave(Chunk("fmt ", format) + fact) + Chunk("data", data);
    wave.resize(wave.size() - data.size() % 2);
    return wave;
}

/// Blocks with random codes and headers, the codes large ones in one block out of two.
Bytes RandomBlocks(std::mt19937& random, const AdpcmLayout& layout, std::size_t bytes)
{
    Bytes data(bytes);
    const auto blockAlign = static_cast<std::size_t>(layout.blockAlign);
    bool isWild = false;
    for (std::size_t i = 0; i < bytes; ++i) {
        const std::size_t offset = i % blockAlign;
        if (offset == 0)
            isWild = random() % 2 == 0;
        if (offset < static_cast<std::size_t>(layout.channels))
            data[i] = static_cast<unsigned char>(random() % layout.pairs.size());
        else
            data[i] = static_cast<unsigned char>(isWild ? 0x88 - random() % 2 * 0x11 : random());
    }
    return data;
}

class AdpcmReader : public SoundFolder
{
};

TEST_F(AdpcmReader, GivesWhatSoxGivesBitForBit)
{
    for (const std::string name :
        {"sox-mono", "sox-stereo", "ffmpeg-mono", "ffmpeg-stereo", "odd-mono", "odd-stereo"}) {
        SCOPED_TRACE(name);
        const Bytes expected = ReadStream(name + ".pcm");
        ASSERT_GT(expected.size(), 5000u);
        const auto file = OpenBytes(ReadStream(name + ".wav"));
        ASSERT_NE(file, nullptr);
        EXPECT_EQ(file->FileType(), SndFile::FileAdpcm);
        EXPECT_TRUE(ReadAll(*file, 100) == expected) << "streamed";
        file->Rewind();
        ASSERT_NE(file->Load(), nullptr);
        EXPECT_TRUE(ReadAll(*file, 1) == expected) << "from memory, one sample frame at a time";
    }
}

TEST_F(AdpcmReader, CountsBlocksAndTheTornLastOne)
{
    struct Row
    {
        const char* what;
        int channels;
        int blockAlign;
        std::size_t bytes;
        int counted;
        std::size_t delivered;
    };
    const std::vector<Row> rows = {
        {"a whole mono block", 1, 512, 512, 1012, 1012},
        {"a whole stereo block", 2, 1024, 1024, 1012, 1012},
        {"three mono blocks", 1, 20, 60, 84, 84},
        {"mono, a torn header", 1, 20, 26, 28, 28},
        {"mono, a header alone counts nothing and gives two", 1, 20, 27, 28, 30},
        {"mono, a header and one byte", 1, 20, 28, 32, 32},
        {"stereo, a torn header", 2, 20, 33, 8, 8},
        {"stereo, a header alone counts nothing and gives two", 2, 20, 34, 8, 10},
        {"stereo, a header and one byte", 2, 20, 35, 11, 11},
        {"one frame to a mono block is the least", 1, 7, 14, 4, 4},
        {"stereo blocks too short for their header", 2, 13, 26, 2, 0},
        {"nothing", 1, 20, 0, 0, 0},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        const AdpcmLayout layout = {row.channels, row.blockAlign, usualPairs};
        const auto file = OpenBytes(AdpcmWave(layout, Bytes(row.bytes, 0)));
        ASSERT_NE(file, nullptr);
        EXPECT_EQ(file->GetBytesPerSample(), 2);
        EXPECT_EQ(file->GetSoundSamples(), row.counted);
        const auto frameBytes = static_cast<std::size_t>(2 * row.channels);
        EXPECT_EQ(ReadAll(*file, 10).size(), row.delivered * frameBytes);
    }
}

TEST_F(AdpcmReader, AnyMixOfReadsSkipsAndRewindsIsExact)
{
    for (unsigned seed = 1; seed <= 60; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        std::mt19937 random(seed);
        const auto draw = [&](int count) {
            return static_cast<int>(random() % static_cast<unsigned>(count));
        };
        const int channels = 1 + draw(2);
        const AdpcmLayout layout = {channels, 7 * channels + draw(seed % 4 == 0 ? 3 : 50), usualPairs};
        const Bytes data = RandomBlocks(
            random, layout, static_cast<std::size_t>(layout.blockAlign * 8 + draw(layout.blockAlign)));
        const Bytes pcm = DecodeAdpcm(layout, data);
        const int frameBytes = 2 * channels;
        const int total = static_cast<int>(pcm.size()) / frameBytes;
        const Bytes fact =
            draw(2) == 0 ? Chunk("fact", Little32(static_cast<std::uint32_t>(1 + draw(total)))) : Bytes();
        const auto file = OpenBytes(AdpcmWave(layout, data, fact));
        ASSERT_NE(file, nullptr);
        if (draw(2) == 0) {
            ASSERT_NE(file->Load(), nullptr);
        }
        const int length = file->GetSoundSamples();
        int position = 0;
        for (int step = 0; step < 300; ++step) {
            SCOPED_TRACE("step " + std::to_string(step) + " at " + std::to_string(position));
            const int action = draw(20);
            const int count = draw(draw(3) == 0 ? total : 9);
            if (action == 0) {
                file->Rewind();
                position = 0;
            }
            else if (action < 12) {
                const int expected = std::min(count, total - position);
                const auto from = pcm.begin() + position * frameBytes;
                ASSERT_EQ(ReadFrames(*file, count), Bytes(from, from + expected * frameBytes));
                position += expected;
            }
            else {
                const int expected = std::clamp(count, 0, std::max(length - position, 0));
                ASSERT_EQ(file->SkipSamples(count), expected);
                position += expected;
            }
            ASSERT_EQ(file->GetCurrentSample(), position);
            ASSERT_EQ(file->GetCurrentLength(), static_cast<unsigned long>(position) * 1000 / 8000);
        }
    }
}

// What has been promised cannot be kept: the position comes back to where the data ended.
TEST_F(AdpcmReader, ASkipThatRunsOutOfBlocksStandsAtTheEnd)
{
    const AdpcmLayout layout = {1, 20, usualPairs};
    const Bytes format = Chunk("fmt ", AdpcmFormat(1, 8000, 20, usualPairs));
    const auto file = OpenBytes(Wave(format + Chunk("data", Bytes(40, 0), 400)));
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(file->GetSoundSamples(), 560);
    ASSERT_EQ(ReadFrames(*file, 56).size(), 112u);
    EXPECT_EQ(file->SkipSamples(10), 10);
    EXPECT_EQ(file->GetCurrentSample(), 66);
    EXPECT_TRUE(ReadFrames(*file, 1).empty());
    EXPECT_EQ(file->GetCurrentSample(), 56);
}

TEST_F(AdpcmReader, AWholeBlockIsPassedOverUnread)
{
    const AdpcmLayout layout = {2, 20, usualPairs};
    Bytes data(100, 0);
    data[40] = 99;
    data[60 + 10] = 1;
    const auto file = OpenBytes(AdpcmWave(layout, data));
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(file->SkipSamples(24), 24);
    EXPECT_EQ(ReadFrames(*file, 1), (Bytes{1, 0, 0, 0})) << "the block without coefficients lies behind";
}

TEST_F(AdpcmReader, ABlockWithoutCoefficientsIsTheEndUntilARewind)
{
    for (const int channel : {0, 1}) {
        SCOPED_TRACE(channel);
        Bytes data(100, 0);
        data[static_cast<std::size_t>(20 + channel)] = 7;
        const auto file = OpenBytes(AdpcmWave({2, 20, usualPairs}, data));
        ASSERT_NE(file, nullptr);
        for (int round = 0; round < 2; ++round) {
            EXPECT_EQ(ReadFrames(*file, 30).size(), 8u * 4);
            EXPECT_TRUE(ReadFrames(*file, 30).empty());
            EXPECT_EQ(file->SkipSamples(16), 16);
            EXPECT_TRUE(ReadFrames(*file, 30).empty());
            file->Rewind();
        }
    }
    const auto mute = OpenBytes(AdpcmWave({1, 20, {}}, Bytes(100, 0)));
    ASSERT_NE(mute, nullptr) << "no coefficients at all is no reason to refuse";
    EXPECT_EQ(mute->GetSoundSamples(), 140);
    EXPECT_TRUE(ReadFrames(*mute, 10).empty());
}

TEST_F(AdpcmReader, FormatsItCannotPlayAreRefused)
{
    std::vector<std::pair<int, int>> eightPairs = usualPairs;
    eightPairs.emplace_back(1, 1);
    Bytes shortOfPairs = AdpcmFormat(1, 8000, 20, usualPairs);
    shortOfPairs.resize(49);
    Bytes withoutExtension = AdpcmFormat(1, 8000, 20, {});
    withoutExtension.resize(21);
    struct Row
    {
        const char* what;
        Bytes format;
        bool opens;
    };
    const std::vector<Row> rows = {
        {"seven pairs in 50 bytes", AdpcmFormat(1, 8000, 20, usualPairs), true},
        {"seven pairs in 49 bytes", shortOfPairs, false},
        {"eight pairs", AdpcmFormat(1, 8000, 20, eightPairs), false},
        {"eight pairs stated, seven there", AdpcmFormat(1, 8000, 20, usualPairs, 8), false},
        {"65535 pairs stated", AdpcmFormat(1, 8000, 20, usualPairs, 65535), false},
        {"six stated, seven there", AdpcmFormat(1, 8000, 20, usualPairs, 6), true},
        {"22 bytes, no pairs", AdpcmFormat(1, 8000, 20, {}), true},
        {"21 bytes", withoutExtension, false},
        {"no channels", AdpcmFormat(0, 8000, 20, usualPairs), false},
        {"three channels", AdpcmFormat(3, 8000, 60, usualPairs), false},
        {"no rate", AdpcmFormat(1, 0, 20, usualPairs), false},
        {"a rate that an int cannot hold", AdpcmFormat(1, 0x80000000, 20, usualPairs), false},
        {"mono blocks of 6", AdpcmFormat(1, 8000, 6, usualPairs), false},
        {"mono blocks of 7", AdpcmFormat(1, 8000, 7, usualPairs), true},
        {"stereo blocks of 12", AdpcmFormat(2, 8000, 12, usualPairs), false},
        {"stereo blocks of 13", AdpcmFormat(2, 8000, 13, usualPairs), true},
        {"blocks of 0", AdpcmFormat(1, 8000, 0, usualPairs), false},
        {"blocks of 65535", AdpcmFormat(1, 8000, 65535, usualPairs), true},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        const auto file = OpenBytes(Wave(Chunk("fmt ", row.format) + Chunk("data", Bytes(40, 0))));
        EXPECT_EQ(file != nullptr, row.opens);
    }
    EXPECT_EQ(openFiles.GetCount(), 0);
}

TEST_F(AdpcmReader, SizesNearTheEndOfTheirTypeAreCounted)
{
    for (const int channels : {1, 2}) {
        SCOPED_TRACE(channels);
        const int blockAlign = 7 * channels;
        const Bytes format = Chunk("fmt ", AdpcmFormat(channels, 8000, blockAlign, usualPairs));
        const auto file = OpenBytes(Wave(format + Chunk("data", Bytes(70, 0), 0xFFFFFFFF)));
        ASSERT_NE(file, nullptr);
        const long long wholeBlocks = 0xFFFFFFFFll / blockAlign;
        const long long counted = std::min(wholeBlocks * 2, 0x7FFFFFFFll);
        EXPECT_EQ(file->GetSoundSamples(), counted);
        EXPECT_EQ(file->Load(), nullptr);
        EXPECT_EQ(file->SkipSamples(std::numeric_limits<int>::max()), counted);
        EXPECT_TRUE(ReadFrames(*file, 5).empty());
        file->Rewind();
        EXPECT_EQ(ReadAll(*file).size(), 40u) << "ten mono blocks or five stereo blocks of two frames";
    }
}

} // namespace
