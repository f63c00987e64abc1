// Positions in a stream: reading, skipping, rewinding, and streams that change or lack something.

#include "MemoryStream.h"

#include "harmonet/engine/Alloc.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

using namespace Quon;

namespace
{

constexpr int frame = 1152;

constexpr const char* mono = "random-mono";
constexpr const char* otherMono = "random-mono-2";
constexpr const char* joint = "random-joint";
/// 576 sample frames each.
constexpr const char* shortFrames = "random-short";

} // namespace

// After a short skip, and after a way back over what has been decoded, the sound is right at once; after a
// skip over whole frames a few frames later.
TEST(MpegReader, AnyMixOfReadsSkipsAndRewindsIsExact)
{
    const Bytes stream = ReadStream("joint-44100.mp3");
    const std::vector<int> whole = DecodeAll(stream);
    constexpr int total = 24 * frame;
    ASSERT_EQ(whole.size(), 2U * total);
    std::mt19937 random(3);
    for (int round = 0; round < 40; ++round) {
        MemoryStream file(stream);
        int position = 0;
        int rightFrom = 0;
        for (int step = 0; step < 60; ++step) {
            SCOPED_TRACE("round " + std::to_string(round) + ", step " + std::to_string(step));
            const int wanted = std::uniform_int_distribution(1, round % 2 != 0 ? frame - 1 : 5000)(random);
            const unsigned action = random() % 8;
            int moved = 0;
            if (action == 0) {
                file.Get()->Rewind();
                position = rightFrom = 0;
                continue;
            }
            if (action == 2 && random() % 2 == 0) {
                position = std::uniform_int_distribution(0, total)(random);
                rightFrom = 0;
                file.Get()->SeekTo(position);
                EXPECT_EQ(file.Get()->GetCurrentSample(), position);
                continue;
            }
            if (action == 1) {
                file.Get()->StepBack(wanted);
                position = std::max(position - wanted, 0);
                if (position < rightFrom + 4 * frame) {
                    rightFrom = std::max(rightFrom, position + 4 * frame);
                }
                EXPECT_EQ(file.Get()->GetCurrentSample(), position);
                continue;
            }
            if (action < 4) {
                moved = file.Get()->SkipSamples(wanted);
                rightFrom = wanted < frame ? rightFrom : position + wanted + 4 * frame;
            }
            else {
                const std::vector<int> part = file.ReadOnce(wanted);
                moved = static_cast<int>(part.size() / 2);
                ASSERT_TRUE(position < rightFrom ||
                    std::equal(part.begin(), part.end(), whole.begin() + 2 * position));
            }
            ASSERT_EQ(moved, std::min(wanted, total - position));
            position += moved;
            ASSERT_EQ(file.Get()->GetCurrentSample(), position);
        }
    }
}

// Far into a stream, where the reader decodes only what the place depends on; then back over what it has.
TEST(MpegReader, ASeekIsRightToTheSampleFrame)
{
    for (const char* name : {"joint-44100.mp3", "crc-44100.mp3", "vbr-32000.mp3", "joint-24000.mp3",
             "joint-22050.mp3", "mono-16000.mp3", "mono-48000.mp3"}) {
        SCOPED_TRACE(name);
        const Bytes once = ReadStream(name);
        const Bytes stream = once + once + once + once;
        const std::vector<int> whole = DecodeAll(stream);
        MemoryStream file(stream);
        const int channels = file.Get()->GetChannels();
        const int total = static_cast<int>(whole.size()) / channels;
        std::mt19937 random(11);
        const auto expectRight = [&](int place) {
            ASSERT_EQ(file.Get()->GetCurrentSample(), place);
            const std::vector<int> part = file.ReadOnce(2000);
            ASSERT_TRUE(place == total || !part.empty());
            ASSERT_TRUE(std::equal(part.begin(), part.end(), whole.begin() + channels * place)) << place;
        };
        for (int round = 0; round < 30; ++round) {
            const int place = round == 0 ? total : std::uniform_int_distribution(0, total)(random);
            file.Get()->SeekTo(place);
            expectRight(place);
            const int back = std::min(std::uniform_int_distribution(1, 9000)(random), place);
            const int target = file.Get()->GetCurrentSample() - back;
            file.Get()->StepBack(back);
            expectRight(target);
        }
    }
}

TEST(MpegReader, EveryTruncationPlaysItsCompleteFrames)
{
    const Bytes stream = ReadStream("mono-16000.mp3");
    constexpr std::size_t frameBytes = 108;
    const std::vector<int> whole = DecodeAll(stream);
    Bytes kept;
    for (const unsigned char next : stream) {
        SCOPED_TRACE(testing::Message() << kept.size() << " bytes kept");
        ASSERT_EQ(MemoryStream(kept).Get() != nullptr, kept.size() >= 4);
        const std::vector<int> pcm = DecodeAll(kept);
        ASSERT_EQ(pcm.size(), kept.size() / frameBytes * 576);
        ASSERT_TRUE(std::equal(pcm.begin(), pcm.end(), whole.begin()));
        kept.push_back(next);
    }
}

TEST(MpegReader, JunkBetweenFramesIsSkipped)
{
    const Bytes frames[2] = {ReadFrames(mono, 3), ReadFrames(otherMono, 2)};
    const std::vector<int> expected = DecodeAll(frames[0] + frames[1]);
    for (const std::size_t junkBytes : {1U, 2U, 5U, 1021U, 1024U, 3000U, 40000U}) {
        Bytes junk(junkBytes, 0xFF);
        for (std::size_t i = 0; i < junkBytes; ++i) {
            junk[i] = i % 3 == 0 ? 0xFF : static_cast<unsigned char>(i % 0xE0);
        }
        junk.back() = 0;
        SCOPED_TRACE(testing::Message() << junkBytes << " bytes");
        MemoryStream file(frames[0] + junk + frames[1] + junk);
        EXPECT_EQ(file.ReadAll(), expected);
        EXPECT_TRUE(file.ReadAll().empty()) << "what has ended stays so";
    }
}

TEST(MpegReader, AnUnsupportedHeaderEndsACallAndTheNextContinuesAfterIt)
{
    MemoryStream file(ReadFrames(mono, 2) + Bytes{0xFF, 0xFB, 0xF0, 0x00} + ReadFrames(otherMono, 1));
    for (const std::size_t delivered : {2U * frame, 1U * frame, 0U}) {
        EXPECT_EQ(file.ReadOnce(4 * frame).size(), delivered);
    }
}

TEST(MpegReader, AFrameWithoutItsBitReservoirIsSilent)
{
    const std::vector<int> pcm = DecodeAll(MakeSilentFrame(3, 300) + ReadFrames(mono, 2));
    ASSERT_EQ(pcm.size(), 3U * frame);
    const auto firstSound = std::find_if(pcm.begin(), pcm.end(), [](int value) { return value != 0; });
    EXPECT_GE(firstSound - pcm.begin(), frame);
    EXPECT_NE(firstSound, pcm.end());
}

TEST(MpegReader, AChangeOfChannelsNeverMixesLayouts)
{
    for (const char* name : {"syntax/changes-mono.mp3", "syntax/changes-joint.mp3"}) {
        const Bytes stream = ReadStream(name);
        const std::vector<int> whole = DecodeAll(stream);
        for (const int samples : {2, 3, 100, 576, 1153, 4000}) {
            SCOPED_TRACE(samples);
            EXPECT_EQ(DecodeAll(stream, samples), whole);
        }
    }
}

// A buffer of one sample frame of one channel has no room for two: both are mixed, and nothing is left out.
TEST(MpegReader, SingleSampleFramesOfOneChannelStayOneChannel)
{
    const Bytes stream = ReadFrames(mono, 2) + ReadFrames(joint, 2) + ReadFrames(mono, 1);
    const std::vector<int> whole = DecodeAll(stream);
    std::vector<int> mixed(whole.begin(), whole.begin() + 2 * frame);
    for (int i = 0; i < 2 * frame; ++i) {
        mixed.push_back((whole[2 * frame + 2 * i] + whole[2 * frame + 2 * i + 1]) / 2);
    }
    mixed.insert(mixed.end(), whole.end() - frame, whole.end());
    EXPECT_EQ(DecodeAll(stream, 1), mixed);
}

TEST(MpegReader, FramesOfAnotherLengthGiveNoStaleData)
{
    const Bytes two = ReadFrames(shortFrames, 2);
    Bytes torn = ReadFrames(mono, 1);
    torn.pop_back();
    MemoryStream file(two + torn);
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(file.ReadOnce(5000).size(), 2U * 576);
        EXPECT_TRUE(file.ReadOnce(5000).empty());
        file.Get()->Rewind();
    }
    MemoryStream longer(two + ReadFrames(mono, 2));
    EXPECT_EQ(longer.Get()->SkipSamples(2 * 576 + 600), 2 * 576 + 600);
    EXPECT_EQ(longer.ReadOnce(5000).size(), 2U * frame - 600);
}

TEST(MpegReader, DoesNotAllocateWhileDecoding)
{
    const std::size_t before = Alloc::LiveBlocks();
    {
        MemoryStream file(ReadStream("joint-44100.mp3"));
        const std::size_t opened = Alloc::LiveBlocks();
        EXPECT_EQ(file.ReadOnce(5000).size(), 2U * 5000);
        EXPECT_EQ(file.Get()->SkipSamples(5000), 5000);
        EXPECT_EQ(Alloc::LiveBlocks(), opened);
        file.Get()->CloseFile(0, nullptr);
        unsigned char pcm[40];
        EXPECT_EQ(file.Get()->ReadSamples(pcm, 10), 0);
        EXPECT_EQ(file.Get()->SkipSamples(10), 0);
    }
    EXPECT_EQ(Alloc::LiveBlocks(), before);
}
