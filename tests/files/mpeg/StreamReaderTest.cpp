// Positions in a stream: reading, skipping, rewinding, and streams that change or lack something.

#include "MemoryStream.h"
#include "PlainDecoder.h"
#include "StreamMaker.h"

#include "harmonet/engine/Alloc.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

using namespace Quon;
using StreamMaker::Bytes;

namespace
{

constexpr int frame = 1152;

StreamMaker::Header MonoHeader()
{
    return {}; // MPEG-1, 128 kbit/s, 44.1 kHz, mono: 417 bytes
}

Bytes RandomStream(StreamMaker::Header header, int frameCount, unsigned seed = 7)
{
    std::mt19937 random(seed);
    return StreamMaker::MakeRandomStream(random, header, frameCount);
}

Bytes operator+(Bytes left, const Bytes& right)
{
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

std::vector<int> DecodeAll(const Bytes& stream, int samplesPerCall = frame)
{
    MemoryStream file(stream);
    return file.ReadAll(samplesPerCall);
}

bool IsSilent(const std::vector<int>& pcm, std::size_t from, std::size_t to)
{
    return std::all_of(pcm.begin() + static_cast<std::ptrdiff_t>(from),
        pcm.begin() + static_cast<std::ptrdiff_t>(to), [](int value) { return value == 0; });
}

} // namespace

TEST(MpegReader, ReadsOfAnySizeGiveTheSamePcmAlsoAfterARewindFromAnywhere)
{
    const Bytes stream = ReadStream("joint-44100.mp3");
    const std::vector<int> whole = DecodeAll(stream);
    ASSERT_EQ(whole.size(), 24u * 2 * frame);
    for (const int samples : {1, 7, 575, 1153, 5000, 100000}) {
        SCOPED_TRACE(std::to_string(samples) + " sample frames per call");
        MemoryStream file(stream);
        file.Get()->SkipSamples(samples);
        file.Get()->Rewind();
        EXPECT_EQ(file.Get()->GetCurrentSample(), 0);
        EXPECT_EQ(file.ReadAll(samples), whole);
        file.Get()->Rewind();
        EXPECT_EQ(file.ReadAll(), whole);
    }
}

TEST(MpegReader, AnyMixOfSkipsKeepsTheCount)
{
    const Bytes stream = ReadStream("joint-44100.mp3");
    const int total = 24 * frame;
    std::mt19937 random(3);
    for (int round = 0; round < 30; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        MemoryStream file(stream);
        int position = 0;
        while (position < total) {
            const int wanted = std::uniform_int_distribution(1, round % 2 != 0 ? 900 : 5000)(random);
            const int expected = std::min(wanted, total - position);
            int moved = 0;
            if (random() % 2 != 0) {
                file.ReadOnce(wanted, moved);
            }
            else {
                moved = file.Get()->SkipSamples(wanted);
            }
            ASSERT_EQ(moved, expected);
            position += moved;
            ASSERT_EQ(file.Get()->GetCurrentSample(), position);
        }
        EXPECT_EQ(file.Get()->SkipSamples(1), 0);
    }
}

TEST(MpegReader, ASkipOfLessThanAFrameTakesThemOutOfADecodedFrame)
{
    const Bytes stream = ReadStream("joint-44100.mp3");
    const std::vector<int> whole = DecodeAll(stream);
    MemoryStream file(stream);
    EXPECT_EQ(file.Get()->SkipSamples(1000), 1000);
    int delivered = 0;
    const std::vector<int> pcm = file.ReadOnce(500, delivered);
    EXPECT_TRUE(std::equal(pcm.begin(), pcm.end(), whole.begin() + 2 * 1000));
    // And over the edge of the frame without a header alone being read.
    EXPECT_EQ(file.Get()->SkipSamples(1000), 1000);
    EXPECT_EQ(file.ReadOnce(1, delivered)[0], whole[2 * 2500]);
}

TEST(MpegReader, TheSoundIsRightAgainAFewFramesBehindALongSkip)
{
    const Bytes stream = ReadStream("joint-44100.mp3");
    const std::vector<int> whole = DecodeAll(stream);
    MemoryStream file(stream);
    EXPECT_EQ(file.Get()->SkipSamples(10 * frame + 100), 10 * frame + 100);
    const std::vector<int> rest = file.ReadAll();
    ASSERT_EQ(rest.size(), whole.size() - 2 * (10 * frame + 100));
    constexpr std::size_t settling = 4 * 2 * frame;
    EXPECT_TRUE(std::equal(
        rest.begin() + settling, rest.end(), whole.end() - (rest.end() - rest.begin()) + settling));
}

TEST(MpegReader, JunkBetweenFramesIsSkipped)
{
    const Bytes frames[2] = {RandomStream(MonoHeader(), 3), RandomStream(MonoHeader(), 2, 8)};
    const std::vector<int> expected = DecodeAll(frames[0] + frames[1]);
    for (const std::size_t junkBytes : {1u, 2u, 5u, 1021u, 1024u, 3000u}) {
        Bytes junk(junkBytes, 0xFF);
        for (std::size_t i = 0; i < junkBytes; ++i) {
            junk[i] = i % 3 == 0 ? 0xFF : static_cast<unsigned char>(i % 0xE0);
        }
        junk.back() = 0;
        EXPECT_EQ(DecodeAll(frames[0] + junk + frames[1] + junk), expected) << junkBytes << " bytes";
    }
}

TEST(MpegReader, AHeaderThatCannotBePlayedEndsACallAndTheNextGoesOnBehindIt)
{
    const Bytes good = RandomStream(MonoHeader(), 2);
    MemoryStream file(good + Bytes{0xFF, 0xFB, 0xF0, 0x00} + RandomStream(MonoHeader(), 1, 8));
    int delivered = 0;
    file.ReadOnce(4 * frame, delivered);
    EXPECT_EQ(delivered, 2 * frame);
    file.ReadOnce(4 * frame, delivered);
    EXPECT_EQ(delivered, frame);
    file.ReadOnce(4 * frame, delivered);
    EXPECT_EQ(delivered, 0);
}

TEST(MpegReader, AFrameWithoutItsReservoirIsSilentAndFillsItsBuffer)
{
    const Bytes stream = RandomStream(MonoHeader(), 2);
    const std::vector<int> pcm = DecodeAll(StreamMaker::MakeFrameWithReservoir(MonoHeader(), 300) + stream);
    ASSERT_EQ(pcm.size(), 3u * frame);
    EXPECT_TRUE(IsSilent(pcm, 0, frame));
    EXPECT_FALSE(IsSilent(pcm, frame, pcm.size()));
}

TEST(MpegReader, AChangeOfChannelsNeverMixesLayoutsNorOverrunsABuffer)
{
    StreamMaker::Header stereo = MonoHeader();
    stereo.mode = 1;
    const Bytes monoFirst =
        RandomStream(MonoHeader(), 3) + RandomStream(stereo, 3) + RandomStream(MonoHeader(), 2);
    const Bytes stereoFirst =
        RandomStream(stereo, 2) + RandomStream(MonoHeader(), 3) + RandomStream(stereo, 2);
    for (const Bytes& stream : {monoFirst, stereoFirst}) {
        const std::vector<int> plain = PlainMpeg::Decoder().Decode(stream);
        for (const int samples : {2, 100, 576, 1152, 1153, 4000}) {
            SCOPED_TRACE(samples);
            const std::vector<int> pcm = DecodeAll(stream, samples);
            ASSERT_EQ(pcm.size(), plain.size());
            for (std::size_t i = 0; i < pcm.size(); ++i) {
                ASSERT_LE(std::abs(pcm[i] - plain[i]), 1) << "value " << i;
            }
        }
    }
}

TEST(MpegReader, NothingStaleIsHandedOutWhenAFrameOfAnotherLengthFails)
{
    StreamMaker::Header shortFrames = MonoHeader();
    shortFrames.isMpeg1 = false;
    Bytes torn = RandomStream(MonoHeader(), 1);
    torn.pop_back();
    MemoryStream file(RandomStream(shortFrames, 2) + torn);
    int delivered = 0;
    file.ReadOnce(5000, delivered);
    EXPECT_EQ(delivered, 2 * 576);
    file.ReadOnce(5000, delivered);
    EXPECT_EQ(delivered, 0);
    file.Get()->Rewind();
    file.ReadOnce(5000, delivered);
    EXPECT_EQ(delivered, 2 * 576);
}

TEST(MpegReader, ASkipIntoLongerFramesSkipsNoMoreThanAsked)
{
    StreamMaker::Header shortFrames = MonoHeader();
    shortFrames.isMpeg1 = false;
    MemoryStream file(RandomStream(shortFrames, 2) + RandomStream(MonoHeader(), 2));
    EXPECT_EQ(file.Get()->SkipSamples(2 * 576 + 600), 2 * 576 + 600);
    int delivered = 0;
    file.ReadOnce(5000, delivered);
    EXPECT_EQ(delivered, 2 * frame - 600);
}

TEST(MpegReader, TakesNothingFromTheHeapWhileItDecodesAndGivesAllBack)
{
    const std::size_t before = Alloc::LiveBlocks();
    {
        MemoryStream file(ReadStream("joint-44100.mp3"));
        const std::size_t opened = Alloc::LiveBlocks();
        std::vector<unsigned char> pcm(4 * 5000);
        EXPECT_EQ(file.Get()->ReadSamples(pcm.data(), 5000), 5000);
        EXPECT_EQ(file.Get()->SkipSamples(5000), 5000);
        EXPECT_EQ(Alloc::LiveBlocks(), opened);
        file.Get()->CloseFile(0, nullptr);
        EXPECT_EQ(file.Get()->ReadSamples(pcm.data(), 10), 0);
        EXPECT_EQ(file.Get()->SkipSamples(10), 0);
    }
    EXPECT_EQ(Alloc::LiveBlocks(), before);
}
