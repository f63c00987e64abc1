#include "drivers/openal/DeviceSource.h"
#include "drivers/openal/OutputDevice.h"
#include "drivers/openal/PcmConverter.h"
#include "drivers/openal/RateConverter.h"
#include "drivers/openal/SilentClock.h"
#include "drivers/openal/SteadyTime.h"
#include "drivers/openal/Voice.h"
#include "drivers/openal/WavSink.h"
#include "harmonet/output/SoundFormat.h"
#include "tests/drivers/OfflineRig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#if !defined(_WIN32)
#include <csignal>
#include <sys/resource.h>
#endif

namespace Quon
{
namespace
{

using testing::ElementsAreArray;

constexpr float noNumber = std::numeric_limits<float>::quiet_NaN();
constexpr float infinite = std::numeric_limits<float>::infinity();

TEST(PcmConverter, EveryFormatConvertsExactly)
{
    struct Row
    {
        int bytesPerSample, channels;
        std::vector<unsigned char> bytes;
        std::vector<float> mono, stereo;
    };
    const Row rows[] = {
        {1, 1, {0x80, 0x00, 0xFF}, {0.0F, -1.0F, 127.0F / 128}, {0, 0, -1, -1, 127.0F / 128, 127.0F / 128}},
        {2, 1, {0x00, 0x80, 0xFF, 0x7F, 0xFF, 0xFF}, {-1.0F, 32767.0F / 32768, -1.0F / 32768},
            {-1, -1, 32767.0F / 32768, 32767.0F / 32768, -1.0F / 32768, -1.0F / 32768}},
        {3, 1, {0x00, 0x00, 0x80, 0xFF, 0xFF, 0xFF, 0x00, 0x00, 0x40}, {-1.0F, -1.0F / 8388608, 0.5F},
            {-1, -1, -1.0F / 8388608, -1.0F / 8388608, 0.5F, 0.5F}},
        {4, 1, {0x00, 0x00, 0x00, 0x80, 0x00, 0x00, 0x00, 0x20}, {-1.0F, 0.25F}, {-1, -1, 0.25F, 0.25F}},
        {2, 2, {0x00, 0x40, 0x00, 0xC0, 0x00, 0x40, 0x00, 0x00}, {0.0F, 0.25F}, {0.5F, -0.5F, 0.5F, 0}},
        // Left, right, and two for both sides: (0.5 + 0.5 * (1/4 - 1)) / 2 and (-0.5 + 0.5 * (1/4 - 1)) / 2.
        {1, 4, {0xC0, 0x40, 0xA0, 0x00}, {-0.1875F}, {0.0625F, -0.4375F}},
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

TEST(WavSink, SamplesAreRoundedAndClipped)
{
    const std::pair<float, int> rows[] = {{0.0F, 0}, {-1.0F, -32768}, {1.0F, 32767}, {7.0F, 32767},
        {-7.0F, -32768}, {0.6F / 32768, 1}, {0.4F / 32768, 0}, {-0.6F / 32768, -1}, {12345.0F / 32768, 12345},
        {noNumber, 0}, {infinite, 32767}, {-infinite, -32768}};
    for (const auto& [sample, expected] : rows) {
        EXPECT_EQ(ToSigned16(sample), expected) << sample;
    }
}

#if !defined(_WIN32)
// The system refuses to let files grow beyond 20000 bytes, as a full disk would.
TEST(WavSink, TheFileIsValidAfterEveryCommitAndWhenTheDiskIsFull)
{
    const std::string path = (GetTestFolder() / "sink.wav").string();
    WavSink sink;
    ASSERT_TRUE(sink.Open(path.c_str(), 22050));
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit small = {20000, before.rlim_max};
    std::signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &small);
    const std::vector<float> block(2 * 700, 0.25F);
    for (size_t commits = 0; commits < 12; ++commits) {
        const Rendering read = ReadRendering(path);
        EXPECT_EQ(read.GetFrames(), 700 * std::min<size_t>(commits, 7));
        EXPECT_EQ(read.rateHz, 22050);
        EXPECT_EQ(read.channels, 2);
        EXPECT_TRUE(read.isSigned16);
        sink.Write(block);
        sink.Commit();
    }
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, SIG_DFL);
    EXPECT_EQ(ReadRendering(path).samples.back(), 0.25);
}
#endif

// The position is reported as the remaining length, which must not grow. The device mixes more at once than
// the machine's clock has advanced, and starves the source at the end.
TEST(Voice, ItsPositionNeverGoesBackWhenItsDeviceGoesAndComes)
{
    OutputDevice device(DeviceSource::GetMachine());
    ASSERT_TRUE(device.OpenLoopback(OfflineRig::rateHz, Hrtf::Off));
    const ContextScope scope(device);
    std::vector<float> out(2 * OfflineRig::rateHz);
    for (const int mixed : {0, 1000, 4000, 6000}) {
        SCOPED_TRACE(mixed);
        Voice voice;
        ASSERT_TRUE(voice.Create(false));
        voice.Begin(false);
        std::int64_t heard = 0;
        const auto expectNotLess = [&](const char* when) {
            EXPECT_GE(voice.GetFramesHeard(), heard) << when;
            heard = voice.GetFramesHeard();
        };
        voice.Queue(std::vector<float>(5000).data(), 5000, 1, OfflineRig::rateHz);
        voice.GetFramesAhead();
        device.Render(out.data(), mixed);
        expectNotLess("mixed");
        EXPECT_EQ(heard, std::min(mixed, 5000));
        voice.GoSilent();
        expectNotLess("silent");
        ASSERT_TRUE(voice.Create(false));
        expectNotLess("on a new device");
        voice.Queue(std::vector<float>(5000).data(), 5000, 1, OfflineRig::rateHz);
        expectNotLess("with more");
        device.Render(out.data(), 20000);
        EXPECT_EQ(voice.GetFramesHeard(), 10000);
        // The blocks played before the underrun have not been reclaimed.
        voice.Queue(std::vector<float>(2000, 0.5F).data(), 2000, 1, OfflineRig::rateHz);
        device.Render(out.data(), 1000);
        EXPECT_EQ(voice.GetFramesHeard(), 11000);
        EXPECT_GT(out[1000], 0.1F);
        voice.GoSilent();
        // At this pitch the rest takes less than a nanosecond.
        voice.SetPitch(1e9F);
        for (const std::int64_t now = GetSteadyNanoseconds(); GetSteadyNanoseconds() == now;) {
        }
        EXPECT_EQ(voice.GetFramesHeard(), 12000);
    }
}

TEST(SilentClock, KeepsItsSpeedSinceTheLastSet)
{
    constexpr std::int64_t second = nanosecondsPerSecond;
    SilentClock clock;
    clock.Start(100, 5 * second, 22050);
    EXPECT_EQ(clock.GetFrames(7 * second), 100 + 44100);
    clock.SetSpeed(11025, 7 * second);
    EXPECT_EQ(clock.GetFrames(7 * second), 100 + 44100);
    EXPECT_EQ(clock.GetFrames(9 * second), 100 + 44100 + 22050);
}

// Another thread reads ahead, sometimes late.
TEST(RateConverter, AChangeOfRateDoesNotDependOnHowFarTheSoundHasBeenRead)
{
    constexpr int rateHz = 44100;
    const auto convert = [](int readAhead, int firstFrames) {
        PcmFifo input;
        input.Start(1);
        RateConverter converter;
        converter.Start(1, rateHz, RateGrade::Good);
        std::vector<float> heard;
        for (const double hz : {1.0 * rateHz, 1.1 * rateHz, 0.9 * rateHz}) {
            converter.SetRate(hz, 50);
            const std::size_t end =
                heard.size() + static_cast<std::size_t>(heard.empty() ? firstFrames : rateHz / 10);
            while (heard.size() < end) {
                std::vector<float> block(std::min<std::size_t>(end - heard.size(), 441));
                const int given = converter.Convert(input, false, block);
                heard.insert(heard.end(), block.begin(), block.begin() + given);
                if (given == 0) {
                    const std::int64_t begin = input.GetEnd();
                    const std::span<float> place = input.Extend(readAhead);
                    for (std::size_t i = 0; i < place.size(); ++i) {
                        place[i] = std::sin(0.06F * static_cast<float>(begin + static_cast<std::int64_t>(i)));
                    }
                }
            }
            input.DropBefore(converter.GetOldestNeeded());
        }
        return heard;
    };
    for (const int firstFrames : {1, rateHz / 10}) {
        const std::vector<float> expected = convert(2 * rateHz, firstFrames);
        for (const int readAhead : {64, 100, 3000}) {
            const std::vector<float> heard = convert(readAhead, firstFrames);
            ASSERT_EQ(heard.size(), expected.size());
            for (std::size_t i = 0; i < heard.size(); ++i) {
                ASSERT_NEAR(heard[i], expected[i], 1e-5) << i << ", read " << readAhead << " at a time";
            }
        }
    }
}

} // namespace
} // namespace Quon
