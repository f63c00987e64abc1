// Frame headers and the standard's numbers, from values written by hand.

#include "harmonet/files/mpeg/FrameParser.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace Quon;

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
        {0xFFFBE840, 1436, 32000, 2, 1152, 32}, // 320 kbit/s
        {0xFFFB1440, 92, 48000, 2, 1152, 32}, // 32 kbit/s
        {0xFFF38000, 204, 22050, 2, 576, 17}, // MPEG-2, 64 kbit/s
        {0xFFF314C0, 20, 24000, 1, 576, 9}, // 8 kbit/s
        {0xFFF3E8C0, 716, 16000, 1, 576, 9}, // 160 kbit/s
    };
    for (const Row& row : table) {
        SCOPED_TRACE(row.bits);
        const FrameHeader header = SplitFrameHeader(row.bits);
        ASSERT_TRUE(HasFrameSync(row.bits) && IsPlayable(header));
        EXPECT_EQ(FrameBytes(header), row.bytes);
        EXPECT_EQ(SampleRateHz(header), row.rateHz);
        EXPECT_EQ(header.Channels(), row.channels);
        EXPECT_EQ(FrameSamples(header), row.samples);
        EXPECT_EQ(SideInfoBytes(header), row.sideInfoBytes);
    }
}

// The plain decoder of these tests takes its numbers from the same tables.
TEST(Tables, HoldTheNumbersOfTheStandard)
{
    EXPECT_EQ(bandTables[4].longStart[18], 330);
    EXPECT_EQ(bandTables[4].longWidth[17], 52);
    constexpr int longCounts[6][4] = {
        {6, 5, 5, 5}, {6, 5, 7, 3}, {11, 10, 0, 0}, {7, 7, 7, 0}, {6, 6, 6, 3}, {8, 8, 5, 0}};
    for (int row = 0; row < 6; ++row) {
        EXPECT_TRUE(std::ranges::equal(lsfScaleFactorRows[row].counts[0], longCounts[row])) << row;
    }
}
