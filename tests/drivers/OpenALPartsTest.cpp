#include "drivers/openal/DeviceSource.h"
#include "drivers/openal/OutputDevice.h"
#include "drivers/openal/PcmConverter.h"
#include "drivers/openal/Placement.h"
#include "drivers/openal/SilentClock.h"
#include "drivers/openal/SteadyTime.h"
#include "drivers/openal/Voice.h"
#include "drivers/openal/WavSink.h"
#include "harmonet/output/SoundFormat.h"
#include "tests/drivers/OfflineRig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <csignal>
#include <limits>
#include <sys/resource.h>

namespace Quon
{
namespace
{

using testing::ElementsAreArray;

constexpr float noNumber = std::numeric_limits<float>::quiet_NaN();
constexpr float infinite = std::numeric_limits<float>::infinity();

TEST(PcmConverter, EveryFormComesOutAsTheFloatsThatItsBytesStandFor)
{
    struct Row
    {
        int bytesPerSample, channels;
        std::vector<unsigned char> bytes;
        std::vector<float> mono, stereo;
    };
    const Row rows[] = {
        {1, 1, {0x80, 0x00, 0xFF}, {0.0f, -1.0f, 127.0f / 128}, {0, 0, -1, -1, 127.0f / 128, 127.0f / 128}},
        {2, 1, {0x00, 0x80, 0xFF, 0x7F, 0xFF, 0xFF}, {-1.0f, 32767.0f / 32768, -1.0f / 32768},
            {-1, -1, 32767.0f / 32768, 32767.0f / 32768, -1.0f / 32768, -1.0f / 32768}},
        {3, 1, {0x00, 0x00, 0x80, 0xFF, 0xFF, 0xFF, 0x00, 0x00, 0x40}, {-1.0f, -1.0f / 8388608, 0.5f},
            {-1, -1, -1.0f / 8388608, -1.0f / 8388608, 0.5f, 0.5f}},
        {4, 1, {0x00, 0x00, 0x00, 0x80, 0x00, 0x00, 0x00, 0x20}, {-1.0f, 0.25f}, {-1, -1, 0.25f, 0.25f}},
        {2, 2, {0x00, 0x40, 0x00, 0xC0, 0x00, 0x40, 0x00, 0x00}, {0.0f, 0.25f}, {0.5f, -0.5f, 0.5f, 0}},
        // Left, right, and two for both sides: (0.5 + 0.5 * (1/4 - 1)) / 2 and (-0.5 + 0.5 * (1/4 - 1)) / 2.
        {1, 4, {0xC0, 0x40, 0xA0, 0x00}, {-0.1875f}, {0.0625f, -0.4375f}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE("row " + std::to_string(&row - rows));
        SoundFormat format;
        format.SetFormat(row.bytesPerSample, 22050, 100, row.channels);
        std::vector<float> mono(row.mono.size());
        ConvertToMono(row.bytes, format, mono);
        EXPECT_THAT(mono, ElementsAreArray(row.mono));
        std::vector<float> stereo(row.stereo.size());
        ConvertToStereo(row.bytes, format, stereo);
        EXPECT_THAT(stereo, ElementsAreArray(row.stereo));
    }
}

TEST(WavSink, SamplesAreRoundedToTheNearestAndClipped)
{
    const std::pair<float, int> rows[] = {{0.0f, 0}, {-1.0f, -32768}, {1.0f, 32767}, {7.0f, 32767},
        {-7.0f, -32768}, {0.6f / 32768, 1}, {0.4f / 32768, 0}, {-0.6f / 32768, -1}, {12345.0f / 32768, 12345},
        {noNumber, 0}, {infinite, 32767}, {-infinite, -32768}};
    for (const auto& [sample, expected] : rows) {
        EXPECT_EQ(ToSigned16(sample), expected) << sample;
    }
}

TEST(WavSink, TheFileIsWholeAfterEveryCommitWhileItIsStillBeingWritten)
{
    const std::string path = (GetTestFolder() / "sink.wav").string();
    WavSink sink;
    ASSERT_TRUE(sink.Open(path.c_str(), 22050));
    const std::vector<float> block(2 * 700, 0.25f);
    for (size_t commits = 0; commits <= 3; ++commits) {
        const Rendering read = ReadRendering(path);
        EXPECT_EQ(read.GetFrames(), 1400 * commits);
        EXPECT_EQ(read.rateHz, 22050);
        EXPECT_EQ(read.channels, 2);
        EXPECT_TRUE(read.isSigned16);
        EXPECT_EQ(std::filesystem::file_size(path), 44 + 4 * 1400 * commits);
        sink.Write(block);
        sink.Write(block);
        sink.Commit();
    }
    EXPECT_EQ(ReadRendering(path).samples.back(), 0.25);
}

// The system refuses to let files grow beyond 10000 bytes, as a full disk would.
TEST(WavSink, ADiskThatRunsFullLeavesTheFileOfTheLastCommit)
{
    const std::string path = (GetTestFolder() / "full.wav").string();
    WavSink sink;
    ASSERT_TRUE(sink.Open(path.c_str(), 22050));
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit small = {10000, before.rlim_max};
    std::signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &small);
    for (int i = 0; i < 20; ++i) {
        sink.Write(std::vector<float>(2 * 1000, 0.5f));
        sink.Commit();
    }
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, SIG_DFL);
    EXPECT_EQ(ReadRendering(path).GetFrames(), 2000u);
}

TEST(Placement, ASoundIsCutOutBeyondItsMaximumDistanceAndNotAtIt)
{
    const DistanceRange cut = {1, 5, true};
    EXPECT_FALSE(IsCutOut(cut, {3, 0, 4}, {0, 0, 0}));
    EXPECT_TRUE(IsCutOut(cut, {3, 0, 4.001f}, {0, 0, 0}));
    EXPECT_TRUE(IsCutOut(cut, {1e15f, 1e15f, 0}, {-1e15f, 0, 0}));
}

TEST(SilentClock, ItRunsAtTheSpeedItHasHadSinceItWasSet)
{
    constexpr std::int64_t second = nanosecondsPerSecond;
    SilentClock clock;
    clock.Start(100, 5 * second, 22050);
    EXPECT_EQ(clock.GetFrames(7 * second), 100 + 44100);
    clock.SetSpeed(11025, 7 * second);
    EXPECT_EQ(clock.GetFrames(7 * second), 100 + 44100);
    EXPECT_EQ(clock.GetFrames(9 * second), 100 + 44100 + 22050);
}

// How much time goes by in silence is the machine's affair, and whatever it is, the sound has to fit it.
TEST(Voice, WithAnotherSourceASoundGoesOnBehindWhatWasDroppedAndNotBeforeItsTime)
{
    constexpr int blockFrames = 8820;
    const auto valueAt = [](std::int64_t sampleFrame) { return static_cast<float>(sampleFrame) / 65536.0f; };
    OutputDevice device(DeviceSource::GetMachine());
    ASSERT_TRUE(device.OpenLoopback(44100, Hrtf::Off));
    const ContextScope scope(device);
    Voice voice;
    const auto queueBlock = [&] {
        std::vector<float> pcm;
        for (int i = 0; i < blockFrames; ++i) {
            pcm.insert(pcm.end(), 2, valueAt(voice.GetFramesQueued() + i));
        }
        voice.Queue(pcm.data(), blockFrames, 2, 44100);
    };
    ASSERT_TRUE(voice.Create(false));
    voice.Begin(false);
    queueBlock();
    queueBlock();
    std::vector<float> heard(2 * 441);
    device.Render(heard.data(), 441);
    EXPECT_EQ(heard.back(), valueAt(440));

    voice.GoSilent();
    EXPECT_GE(voice.GetFramesHeard(), 441);
    voice.SetGain(0.5f);
    queueBlock();
    queueBlock();
    const std::int64_t before = voice.GetFramesHeard();
    EXPECT_FALSE(voice.TakeReturn());
    ASSERT_TRUE(voice.Create(false));
    EXPECT_TRUE(voice.TakeReturn());
    EXPECT_FALSE(voice.TakeReturn());
    const std::int64_t ahead = voice.GetFramesAhead();
    EXPECT_LE(before, voice.GetFramesHeard());
    EXPECT_EQ(voice.GetFramesQueued(), 4 * blockFrames);
    queueBlock();
    heard.assign(2 * static_cast<size_t>(ahead + blockFrames), -1.0f);
    device.Render(heard.data(), static_cast<int>(ahead) + blockFrames);
    for (std::int64_t i = 0; i < ahead + blockFrames; ++i) {
        const float expected = i < ahead ? 0.0f : 0.5f * valueAt(4 * blockFrames + i - ahead);
        ASSERT_EQ(heard[2 * static_cast<size_t>(i)], expected) << i << " with " << ahead << " ahead";
    }
}

} // namespace
} // namespace Quon
