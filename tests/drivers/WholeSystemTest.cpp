#include "harmonet/instances/Sound.h"
#include "harmonet/instances/SoundObserver.h"
#include "tests/drivers/OfflineRig.h"
#include "tests/support/HostTest.h"

namespace Quon
{
namespace
{

constexpr int rateHz = 44100;
constexpr int stepMs = 50;
constexpr int stepFrames = rateHz * stepMs / 1000;

/// A voice that comes block by block, as from a network: each block that has been played is filled anew and
/// appended, out of the event that gives it back.
class Stream : public SoundObserver
{
public:
    static constexpr int blockFrames = 1323;
    static constexpr int blockCount = 8;
    static constexpr int lastBlock = 60;

    explicit Stream(Sound& newGroup)
        : group(newGroup)
    {
        group.AddObserver(this);
        Fill(blocks[0]);
        id = group.New2DSound(blocks[0], sizeof(blocks[0]), &format);
        for (int i = 1; i < blockCount; ++i) {
            Append(blocks[i]);
        }
        EXPECT_TRUE(group.StartSound(id, Sound::StartQueued));
    }

    void OnBufferFree(int soundID, void* buffer) override
    {
        EXPECT_EQ(soundID, id);
        if (filled < lastBlock) {
            Append(*static_cast<Block*>(buffer));
        }
        ++given;
    }
    void OnSoundEnd(int, const PString&) override { hasEnded = true; }

    static short GetSample(int sampleFrame) { return static_cast<short>(sampleFrame * 40503); }

    int given = 0; ///< Blocks that have come back.
    bool hasEnded = false;

private:
    using Block = short[blockFrames];

    void Fill(Block& block)
    {
        for (int i = 0; i < blockFrames; ++i) {
            block[i] = GetSample(filled * blockFrames + i);
        }
        ++filled;
    }
    void Append(Block& block)
    {
        Fill(block);
        EXPECT_TRUE(group.CatSound(id, block, sizeof(block), &format));
    }

    Sound& group;
    WaveFormatEx format = MemoryBlock({0, rateHz}).format;
    Block blocks[blockCount];
    int filled = 0;
    int id = 0;
};

/// The library with one of its real drivers. Nothing of its memory may be left at the end.
class WholeSystem : public HostTest
{
};

TEST_F(WholeSystem, AVoiceThatIsRefilledFromItsOwnEventsIsHeardWithoutASeamAndGivesAllItsBlocksBack)
{
    const std::string path = (GetTestFolder() / "whole.wav").string();
    SetOption("SoundFrequency", "44100");
    SetOption("OpenALRender", path.c_str());
    for (const char* const driver : {"HarmonetNull", "HarmonetOpenAL"}) {
        SCOPED_TRACE(driver);
        SetOption("Sound", driver);
        ASSERT_TRUE(Start());
        Sound group;
        Stream stream(group);
        // The first update takes the sound in, and one more sees its end.
        StepTimes(Stream::lastBlock * Stream::blockFrames / stepFrames + 2, stepMs);
        EXPECT_TRUE(stream.hasEnded);
        EXPECT_EQ(stream.given, Stream::lastBlock);
        system.Done();
    }
    const Rendering heard = ReadRendering(path);
    for (int i = 0; i < Stream::lastBlock * Stream::blockFrames; ++i) {
        ASSERT_EQ(heard.At(static_cast<size_t>(stepFrames + i)), Stream::GetSample(i) / 32768.0) << i;
    }
}

} // namespace
} // namespace Quon
