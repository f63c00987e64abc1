// Damaged streams. The address sanitizer and the guard bytes of MemoryStream detect overruns; these tests
// check the counts, and that a rewind gives the same PCM again.

#include "MemoryStream.h"

#include <gtest/gtest.h>

#include <random>

using namespace Quon;

namespace
{

class BadStreams : public testing::Test
{
protected:
    static void ReadTwice(const Bytes& stream)
    {
        MemoryStream file(stream);
        if (file.Get() == nullptr) {
            return;
        }
        const std::vector<int> once = file.ReadAll(700);
        // A frame of 24 bytes, the shortest that there is, gives 576 sample frames of two channels at most.
        ASSERT_LE(once.size(), (stream.size() / 24 + 1) * 576 * 2);
        file.Get()->Rewind();
        ASSERT_EQ(file.ReadAll(700), once);
    }

private:
    /// Lives on, so that the shared tables are not built for each stream.
    SndFileMP3 keeper;
};

} // namespace

TEST_F(BadStreams, EveryTruncationPlaysItsCompleteFrames)
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

// In small frames each bit of each byte by itself, which reaches each field of a header, and the ends of a
// byte's range; in large ones several bytes at once, most of them where the side information is.
TEST_F(BadStreams, ChangedBytesStayWithinBuffers)
{
    std::mt19937 random(11);
    for (const char* name : {"random-small-joint", "random-small-mono"}) {
        const Bytes stream = ReadFrames(name, 3);
        for (std::size_t at = 0; at < stream.size(); ++at) {
            for (int change = 0; change < 12; ++change) {
                constexpr unsigned char ends[] = {0, 0x0F, 0xF0, 0xFF};
                SCOPED_TRACE(testing::Message() << name << ", byte " << at << ", " << change);
                Bytes changed = stream;
                changed[at] = change < 8 ? changed[at] ^ (1 << change) : ends[change - 8];
                ASSERT_NO_FATAL_FAILURE(ReadTwice(changed));
            }
        }
    }
    const Bytes stream = ReadFrames("random-large", 4);
    for (int round = 0; round < 1500; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        Bytes changed = stream;
        for (int change = 0; change < 1 + round % 20; ++change) {
            const std::size_t start = random() % 4 * (stream.size() / 4);
            changed[start + random() % (round % 4 != 0 ? 40 : 1440)] = static_cast<unsigned char>(random());
        }
        ASSERT_NO_FATAL_FAILURE(ReadTwice(changed));
    }
}
