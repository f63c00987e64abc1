// Headers, side information and scale factors from bits written by hand.

#include "harmonet/files/mpeg/FrameParser.h"
#include "StreamMaker.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace Quon;

namespace
{

FrameHeader Split(unsigned headerBits)
{
    return SplitFrameHeader(headerBits);
}

/// Reads the scale factors of a granule whose bits count up: value k of the sequence is k mod 2^length.
ScaleFactors ReadCounting(const FrameHeader& header, SideInfo& sideInfo, int granule, int channel,
    const std::vector<int>& lengths, int& bits)
{
    StreamMaker::BitWriter writer;
    for (std::size_t i = 0; i < lengths.size(); ++i) {
        writer.Put(static_cast<int>(i) & ((1 << lengths[i]) - 1), lengths[i]);
    }
    writer.PadTo(writer.GetBytes().size() + 40);
    BitReader reader;
    reader.Set(writer.GetBytes().data());
    ScaleFactors scaleFactors = {};
    bits = ReadScaleFactors(reader, header, granule, channel, sideInfo, scaleFactors);
    EXPECT_EQ(8 * (reader.BitPointer() - writer.GetBytes().data()) + reader.BitOffset(), bits);
    return scaleFactors;
}

std::vector<int> Repeat(std::initializer_list<std::pair<int, int>> countsAndLengths)
{
    std::vector<int> lengths;
    for (const auto& [count, length] : countsAndLengths) {
        lengths.insert(lengths.end(), static_cast<std::size_t>(count), length);
    }
    return lengths;
}

constexpr unsigned mpeg1Stereo = 0xFFFB9000;
constexpr unsigned mpeg1Joint = 0xFFFB9040;
constexpr unsigned mpeg2Joint = 0xFFF39040;
constexpr unsigned intensityBit = 0x10;

} // namespace

TEST(BitReader, ReadsAcrossBytesAndGoesBack)
{
    const unsigned char bytes[] = {0xA5, 0x3C, 0xFF, 0x00, 0x00};
    BitReader reader;
    reader.Set(bytes);
    EXPECT_EQ(reader.GetBits(0), 0u);
    EXPECT_EQ(reader.GetBits(3), 0b101u);
    EXPECT_EQ(reader.GetBits(16), 0b0010'1001'1110'0111u);
    reader.UngetBits(17);
    EXPECT_EQ(reader.GetBits(6), 0b100101u);
    EXPECT_EQ(reader.GetBits(16), 0x3CFFu);
}

TEST(FrameHeader, TellsLengthAndFormat)
{
    struct Row
    {
        unsigned bits;
        int bytes; ///< Behind the header.
        int rateHz;
        int channels;
        int samples;
        int sideInfoBytes;
    };
    constexpr Row table[] = {
        {0xFFFB90C0, 413, 44100, 1, 1152, 17}, // MPEG-1 mono, 128 kbit/s
        {0xFFFB92C0, 414, 44100, 1, 1152, 17}, // the same, padded
        {0xFFFB9000, 413, 44100, 2, 1152, 32}, {0xFFFBE840, 1436, 32000, 2, 1152, 32}, // 320 kbit/s
        {0xFFFB1440, 92, 48000, 2, 1152, 32}, // 32 kbit/s
        {0xFFF38000, 204, 22050, 2, 576, 17}, // MPEG-2, 64 kbit/s
        {0xFFF314C0, 20, 24000, 1, 576, 9}, // 8 kbit/s
        {0xFFF3E8C0, 716, 16000, 1, 576, 9} // 160 kbit/s
    };
    for (const Row& row : table) {
        SCOPED_TRACE(row.bits);
        const FrameHeader header = Split(row.bits);
        ASSERT_TRUE(HasFrameSync(row.bits) && IsPlayable(header));
        EXPECT_EQ(FrameBytes(header), row.bytes);
        EXPECT_EQ(SampleRateHz(header), row.rateHz);
        EXPECT_EQ(header.Channels(), row.channels);
        EXPECT_EQ(FrameSamples(header), row.samples);
        EXPECT_EQ(SideInfoBytes(header), row.sideInfoBytes);
    }
}

TEST(FrameHeader, RefusesWhatIsNotPlayed)
{
    constexpr unsigned refused[] = {
        0xFFFD9000, // Layer II
        0xFFFF9000, // Layer I
        0xFFF99000, // the reserved layer
        0xFFE39000, // MPEG 2.5
        0xFFEB9000, // the reserved version
        0xFFFB0000, // free format
        0xFFFBF000, // the forbidden bitrate
        0xFFFB9C00, // the reserved rate
    };
    for (unsigned bits : refused) {
        EXPECT_FALSE(IsPlayable(Split(bits))) << bits;
    }
    EXPECT_FALSE(HasFrameSync(0xFFDB9000));
    EXPECT_FALSE(HasFrameSync(0xFEFB9000));
}

TEST(FrameHeader, StereoModesCountInJointStereoOnly)
{
    EXPECT_TRUE(Split(0xFFFB9060).MsStereo());
    EXPECT_FALSE(Split(0xFFFB9060).IntensityStereo());
    EXPECT_TRUE(Split(0xFFFB9050).IntensityStereo());
    EXPECT_FALSE(Split(0xFFFB9030).MsStereo());
    EXPECT_FALSE(Split(0xFFFB90B0).IntensityStereo());
}

TEST(Bands, At24KilohertzBand18BeginsAtLine330)
{
    EXPECT_EQ(bandTables[4].longStart[17], 278);
    EXPECT_EQ(bandTables[4].longStart[18], 330);
    EXPECT_EQ(bandTables[4].longWidth[17], 52);
}

TEST(SideInfo, IsReadInItsOrder)
{
    StreamMaker::BitWriter writer;
    writer.Put(300, 9); // main_data_begin
    writer.Put(5, 3);
    writer.Put(0b1001, 4); // scfsi
    writer.Put(0b0110, 4);
    writer.Put(1234, 12); // granule 0, left: three regions
    writer.Put(99, 9);
    writer.Put(210, 8);
    writer.Put(13, 4);
    writer.Put(0, 1);
    writer.Put(7, 5);
    writer.Put(24, 5);
    writer.Put(31, 5);
    writer.Put(5, 4);
    writer.Put(2, 3);
    writer.Put(0b110, 3);
    writer.Put(0, 59); // right
    writer.Put(4095, 12); // granule 1, left: short blocks
    writer.Put(511, 9);
    writer.Put(100, 8);
    writer.Put(4, 4);
    writer.Put(1, 1);
    writer.Put(2, 2);
    writer.Put(1, 1);
    writer.Put(3, 5);
    writer.Put(9, 5);
    writer.Put(0b001'010'111, 9);
    writer.Put(0b001, 3);
    writer.Put(0, 59);
    ASSERT_EQ(writer.GetBytes().size(), 32u);
    writer.PadTo(40);

    BitReader reader;
    reader.Set(writer.GetBytes().data());
    SideInfo sideInfo;
    ParseSideInfo(reader, Split(mpeg1Stereo), sideInfo);
    EXPECT_EQ(sideInfo.main_data_begin, 300);
    EXPECT_TRUE(std::ranges::equal(sideInfo.channels[0].scfsi, std::vector{1, 0, 0, 1}));
    EXPECT_TRUE(std::ranges::equal(sideInfo.channels[1].scfsi, std::vector{0, 1, 1, 0}));
    const GranuleInfo& plain = sideInfo.channels[0].granules[0];
    EXPECT_EQ(plain.part2_3_length, 1234);
    EXPECT_EQ(plain.big_values, 99);
    EXPECT_TRUE(std::ranges::equal(plain.table_select, std::vector{7, 24, 31}));
    // Boundaries 6 and 9 of the long bands at 44.1 kHz.
    EXPECT_EQ(plain.region1Start, 24);
    EXPECT_EQ(plain.region2Start, 44);
    EXPECT_EQ(plain.preflag, 1);
    EXPECT_EQ(plain.scalefac_scale, 1);
    EXPECT_EQ(plain.count1table_select, 0);
    EXPECT_TRUE(std::ranges::equal(plain.gain, std::vector{210, 210, 210, 210}));
    const GranuleInfo& shortBlock = sideInfo.channels[0].granules[1];
    EXPECT_TRUE(shortBlock.IsMixed());
    EXPECT_TRUE(std::ranges::equal(shortBlock.table_select, std::vector{3, 9, 0}));
    EXPECT_EQ(shortBlock.region1Start, 36);
    EXPECT_EQ(shortBlock.region2Start, 576);
    EXPECT_EQ(shortBlock.count1table_select, 1);
    EXPECT_TRUE(std::ranges::equal(shortBlock.gain, std::vector{100, 92, 84, 44}));
}

TEST(SideInfo, TheGainOfPureMidSideIsTwoLower)
{
    for (const unsigned extension : {0u, 0x10u, 0x20u, 0x30u}) {
        StreamMaker::BitWriter writer;
        writer.PadTo(40);
        BitReader reader;
        reader.Set(writer.GetBytes().data());
        SideInfo sideInfo;
        ParseSideInfo(reader, Split(mpeg1Joint | extension), sideInfo);
        EXPECT_EQ(sideInfo.channels[1].granules[1].gain[0], extension == 0x20 ? -2 : 0) << extension;
    }
}

TEST(SideInfo, RegionsBehindTheLastBandBeginAtTheLastLine)
{
    // No window switching, and region counts of 15 and 7.
    StreamMaker::BitWriter side;
    side.Put(0, 18);
    side.Put(0, 12 + 9 + 8 + 4 + 1 + 15);
    side.Put(15, 4);
    side.Put(7, 3);
    side.PadTo(40);
    BitReader reader;
    reader.Set(side.GetBytes().data());
    SideInfo sideInfo;
    ParseSideInfo(reader, Split(0xFFFB90C0), sideInfo);
    EXPECT_EQ(sideInfo.channels[0].granules[0].region1Start, bandTables[0].longStart[16]);
    EXPECT_EQ(sideInfo.channels[0].granules[0].region2Start, 576);
}

TEST(ScaleFactors, OfMpeg1ComeInGroupsThatGranule1CanShare)
{
    SideInfo sideInfo = {};
    sideInfo.channels[0].granules[1].scalefac_compress = 14; // 4 and 2 bits
    const FrameHeader header = Split(mpeg1Stereo);
    int bits = 0;
    ScaleFactors all = ReadCounting(header, sideInfo, 1, 0, Repeat({{11, 4}, {10, 2}}), bits);
    EXPECT_EQ(bits, 11 * 4 + 10 * 2);
    for (int band = 0; band < 21; ++band) {
        EXPECT_EQ(all.longBands[band], band < 11 ? band : band % 4) << band;
    }
    EXPECT_EQ(all.longBands[21], 0);

    std::ranges::fill(sideInfo.channels[0].scfsi, 1);
    ReadCounting(header, sideInfo, 1, 0, {}, bits);
    EXPECT_EQ(bits, 0);
    sideInfo.channels[0].scfsi[1] = 0;
    all = ReadCounting(header, sideInfo, 1, 0, Repeat({{5, 4}}), bits);
    EXPECT_EQ(bits, 5 * 4);
    EXPECT_EQ(all.longBands[5], 0);
    EXPECT_EQ(all.longBands[7], 1);
    // Granule 0 reads all of them whatever the sharing bits say.
    sideInfo.channels[0].granules[0].scalefac_compress = 14;
    ReadCounting(header, sideInfo, 0, 0, {}, bits);
    EXPECT_EQ(bits, 11 * 4 + 10 * 2);
}

TEST(ScaleFactors, OfMpeg1ShortBlocksComeWindowByWindow)
{
    SideInfo sideInfo = {};
    GranuleInfo& info = sideInfo.channels[1].granules[0];
    info.block_type = 2;
    info.scalefac_compress = 14;
    const FrameHeader header = Split(mpeg1Stereo);
    int bits = 0;
    ScaleFactors all = ReadCounting(header, sideInfo, 0, 1, Repeat({{18, 4}, {18, 2}}), bits);
    EXPECT_EQ(bits, 18 * (4 + 2));
    EXPECT_EQ(all.shortBands[2][4], 14);
    EXPECT_EQ(all.shortBands[1][11], (11 * 3 + 1) % 4);
    info.mixed_block_flag = 1;
    all = ReadCounting(header, sideInfo, 0, 1, Repeat({{8 + 9, 4}, {18, 2}}), bits);
    EXPECT_EQ(bits, 17 * 4 + 18 * 2);
    EXPECT_EQ(all.longBands[7], 7);
    EXPECT_EQ(all.shortBands[0][3], 8);
    EXPECT_EQ(all.shortBands[2][2], 0);
    EXPECT_EQ(all.shortBands[0][6], 17 % 4);
}

TEST(ScaleFactors, OfMpeg2TakeTheirLengthsFromEveryValue)
{
    constexpr int longCounts[6][4] = {
        {6, 5, 5, 5}, {6, 5, 7, 3}, {11, 10, 0, 0}, {7, 7, 7, 0}, {6, 6, 6, 3}, {8, 8, 5, 0}};
    for (int s = 0; s < 512; ++s) {
        for (const bool special : {false, true}) {
            SCOPED_TRACE(testing::Message() << "scalefac_compress " << s << (special ? ", special" : ""));
            const int h = s / 2;
            int row = s < 400 ? 0 : s < 500 ? 1 : 2;
            std::vector<int> lengths;
            if (special) {
                row = h < 180 ? 3 : h < 244 ? 4 : 5;
                lengths = row == 3 ? std::vector{h / 36, h % 36 / 6, h % 6, 0}
                    : row == 4     ? std::vector{(h - 180) / 16, (h - 180) % 16 / 4, (h - 180) % 4, 0}
                                   : std::vector{(h - 244) / 3, (h - 244) % 3, 0, 0};
            }
            else {
                lengths = row == 0 ? std::vector{s / 16 / 5, s / 16 % 5, s % 16 / 4, s % 4}
                    : row == 1     ? std::vector{(s - 400) / 4 / 5, (s - 400) / 4 % 5, (s - 400) % 4, 0}
                                   : std::vector{(s - 500) / 3, (s - 500) % 3, 0, 0};
            }
            std::vector<int> each;
            for (std::size_t group = 0; group < 4; ++group) {
                each.insert(each.end(), static_cast<std::size_t>(longCounts[row][group]), lengths[group]);
            }
            SideInfo sideInfo = {};
            sideInfo.channels[1].granules[0].scalefac_compress = s;
            int bits = 0;
            const FrameHeader header = Split(mpeg2Joint | (special ? intensityBit : 0));
            const ScaleFactors all = ReadCounting(header, sideInfo, 0, 1, each, bits);
            EXPECT_EQ(sideInfo.channels[1].granules[0].preflag, row == 2 ? 1 : 0);
            for (std::size_t band = 0; band < 21; ++band) {
                ASSERT_EQ(all.longBands[band], static_cast<int>(band) & ((1 << each[band]) - 1));
            }
        }
    }
}

TEST(ScaleFactors, OfAnMpeg2MixedBlockBeginWithEightLongBands)
{
    SideInfo sideInfo = {};
    GranuleInfo& info = sideInfo.channels[0].granules[0];
    info.block_type = 2;
    info.mixed_block_flag = 1;
    info.scalefac_compress = 16 * 5 * 3 + 16 * 3 + 4 * 3 + 3; // all four lengths are 3
    int bits = 0;
    const ScaleFactors all = ReadCounting(Split(mpeg2Joint), sideInfo, 0, 0, Repeat({{33, 3}}), bits);
    EXPECT_EQ(bits, 33 * 3);
    EXPECT_EQ(all.longBands[7], 7);
    EXPECT_EQ(all.longBands[8], 0);
    EXPECT_EQ(all.shortBands[0][3], 8 % 8);
    EXPECT_EQ(all.shortBands[1][3], 9 % 8);
    EXPECT_EQ(all.shortBands[0][11], 32 % 8);
    EXPECT_EQ(all.shortBands[2][10], 31 % 8);
}
