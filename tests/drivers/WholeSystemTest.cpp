#include "harmonet/definitions/EnvReverbPresets.h"
#include "harmonet/instances/Microphone.h"
#include "harmonet/instances/Sound.h"
#include "harmonet/instances/SoundObserver.h"
#include "tests/drivers/OfflineRig.h"
#include "tests/support/HostTest.h"

#include <cmath>
#include <cstring>

namespace Quon
{
namespace
{

constexpr int rateHz = 44100;
constexpr int stepMs = 50;
constexpr int stepFrames = rateHz * stepMs / 1000;

/// The library with one of its real drivers. Nothing of its memory may be left at the end.
class WholeSystem : public HostTest
{
protected:
    WholeSystem()
        : path((GetTestFolder() / "whole.wav").string())
    {
        SetOption("SoundFrequency", "44100");
        SetOption("OpenALRender", path.c_str());
        format.formatTag = waveTagPcm;
        format.channels = 1;
        format.samplesPerSecond = rateHz;
        format.bitsPerSample = 16;
    }

    void StartWith(const char* driver)
    {
        SetOption("Sound", driver);
        ASSERT_TRUE(Start());
    }

    const std::string path;
    WaveFormatEx format{};
};

/// A voice that comes block by block, as from a network: each block that has been played is filled anew and
/// appended, out of the event that gives it back.
class Stream : public SoundObserver
{
public:
    static constexpr int blockFrames = 1323;
    static constexpr int blockCount = 8;
    static constexpr int lastBlock = 60;

    Stream(Sound& newGroup, WaveFormatEx& newFormat)
        : group(newGroup)
        , format(newFormat)
    {
        group.AddObserver(this);
        Fill(blocks[0]);
        id = group.New2DSound(blocks[0], sizeof(blocks[0]), &format);
        for (int i = 1; i < blockCount; ++i) {
            Fill(blocks[i]);
            EXPECT_TRUE(group.CatSound(id, blocks[i], sizeof(blocks[i]), &format));
        }
        EXPECT_TRUE(group.StartSound(id, Sound::StartQueued));
    }

    void OnBufferFree(int soundID, void* buffer) override
    {
        EXPECT_EQ(soundID, id);
        if (filled < lastBlock) {
            auto& block = *static_cast<short(*)[blockFrames]>(buffer);
            Fill(block);
            EXPECT_TRUE(group.CatSound(id, block, sizeof(block), &format));
        }
        ++given;
    }
    void OnSoundEnd(int, const PString&) override { hasEnded = true; }

    static short GetSample(int sampleFrame) { return static_cast<short>(sampleFrame * 40503); }

    int given = 0; ///< Blocks that have come back.
    bool hasEnded = false;

private:
    void Fill(short (&block)[blockFrames])
    {
        for (int i = 0; i < blockFrames; ++i) {
            block[i] = GetSample(filled * blockFrames + i);
        }
        ++filled;
    }

    Sound& group;
    WaveFormatEx& format;
    short blocks[blockCount][blockFrames];
    int filled = 0;
    int id = 0;
};

TEST_F(WholeSystem, AVoiceThatIsRefilledFromItsOwnEventsIsHeardWithoutASeamAndGivesAllItsBlocksBack)
{
    for (const char* const driver : {"HarmonetNull", "HarmonetOpenAL"}) {
        SCOPED_TRACE(driver);
        StartWith(driver);
        Sound group;
        Stream stream(group, format);
        const int length = Stream::lastBlock * Stream::blockFrames;
        // The first update takes the sound in, and one more sees its end.
        StepTimes(length / stepFrames + 2, stepMs);
        EXPECT_TRUE(stream.hasEnded);
        EXPECT_EQ(stream.given, Stream::lastBlock);
        system.Done();
        if (driver == std::string("HarmonetOpenAL")) {
            const Rendering heard = ReadRendering(path);
            for (int i = 0; i < length; ++i) {
                ASSERT_EQ(heard.At(static_cast<size_t>(stepFrames + i)), Stream::GetSample(i) / 32768.0) << i;
            }
        }
    }
}

// A ramp over ten seconds tells by its height where in the sound one is.
TEST_F(WholeSystem, ASoundThatLosesItsChannelComesBackWhereItWouldBe)
{
    SetOption("MaxSounds", "1");
    StartWith("HarmonetOpenAL");
    std::vector<short> ramp(10 * rateHz);
    for (size_t i = 0; i < ramp.size(); ++i) {
        ramp[i] = static_cast<short>(i * 32767 / ramp.size());
    }
    std::vector<short> silence(static_cast<size_t>(rateHz));
    Sound group;
    group.Play2DSound(ramp.data(), ramp.size() * sizeof(short), &format, 0, 0, 0);
    StepTimes(20, stepMs);
    group.Play2DSound(silence.data(), silence.size() * sizeof(short), &format, 0, 1, 0);
    StepTimes(40, stepMs);
    system.Done();

    const Rendering heard = ReadRendering(path);
    const auto placeAt = [&](size_t sampleFrame) { return 10 * heard.At(sampleFrame); };
    const auto secondsAt = [](size_t sampleFrame) {
        return static_cast<double>(sampleFrame - stepFrames) / rateHz;
    };
    const size_t before = 20 * stepFrames;
    const size_t meanwhile = 30 * stepFrames;
    const size_t after = 60 * stepFrames - 1;
    EXPECT_NEAR(placeAt(before), secondsAt(before), 0.001);
    EXPECT_EQ(placeAt(meanwhile), 0.0);
    // At most by what was read and not heard when it was taken off.
    EXPECT_NEAR(placeAt(after), secondsAt(after), 0.012);
}

class EndObserver : public SoundObserver
{
public:
    void OnSoundEnd(int soundID, const PString&) override { ended.push_back(soundID); }

    std::vector<int> ended;
};

TEST_F(WholeSystem, EffectsAndTheListenersRoomAreHeardAfterTheSoundItselfAndOneTellsTheEnd)
{
    StartWith("HarmonetOpenAL");
    Microphone listener;
    listener.Activate();
    EXPECT_TRUE(listener.SetFXEnvReverb(&fxEnvReverbCave, 2, 0));
    std::vector<short> beep(rateHz / 10, 20000);
    const unsigned long bytes = beep.size() * sizeof(short);
    EndObserver observer;
    Sound group;
    group.AddObserver(&observer);
    const FXEcho wild = {50, 50, 250, 9999, 0};
    const int echoing = group.New2DSound(beep.data(), bytes, &format);
    EXPECT_TRUE(group.SetFXEcho(echoing, &wild));
    EXPECT_TRUE(group.StartSound(echoing, 0));
    const int inCave = group.New3DSound(beep.data(), bytes, &format);
    group.SetSoundCone(inCave, 360, 360, 1);
    EXPECT_TRUE(group.StartSound(inCave, 0));
    const FXEnvReverbSourceProperties behindDoor = {0, 0, 0, 0, 0, 0, 0, -3000, 0.3F};
    EXPECT_TRUE(group.SetFXEnvReverbSourceProperties(inCave, &behindDoor));

    StepTimes(4, stepMs);
    EXPECT_EQ(observer.ended, std::vector<int>{inCave});
    FXEcho live{};
    EXPECT_TRUE(group.GetFXEcho(echoing, &live));
    EXPECT_EQ(live.rightDelay, 2000.0F);
    EXPECT_EQ(group.GetRemainLength(echoing), 0u);
    // The tail of such an echo is longer than any that is waited for.
    StepTimes(3000 / stepMs + 2, stepMs);
    EXPECT_EQ(observer.ended, (std::vector<int>{inCave, echoing}));
    listener.ResetFXEnvReverb(0);
    system.Done();

    const Rendering heard = ReadRendering(path);
    const size_t start = stepFrames;
    // 250 ms after its start the beep is back on the left; between the two only the cave is heard.
    EXPECT_NEAR(heard.Level(start + 11500, start + 15000, 0), 20000.0 / 32768 / 2, 0.05);
    const double cave = heard.Level(start + 6000, start + 10000, 1);
    EXPECT_GT(cave, 0.0005);
    EXPECT_LT(cave, 0.05);
}

} // namespace
} // namespace Quon
