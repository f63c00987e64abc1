#include "drivers/openal/OfflineRenderer.h"

#include "drivers/openal/Acoustics.h"
#include "drivers/openal/OutputDevice.h"
#include "drivers/openal/VoicePool.h"

#include <algorithm>

namespace Quon
{

namespace
{
constexpr std::int64_t microsecondsPerSecond = 1000000;
constexpr std::int64_t minBlockMicroseconds = 5000;
/// The maximum data read ahead for the fade-out of a displaced sound.
constexpr std::int64_t heldMicroseconds = 110000;
/// The number of sample frames to resample that is worth waking other threads.
constexpr int minSharedFrames = 16384;
constexpr int slicesPerSecond = 20;
constexpr int fallsPerSecond = 200;
constexpr int blocksPerSecond = 100;
constexpr int steadyBlocksPerSecond = 25;
constexpr std::size_t channelsOut = 2;
} // namespace

OfflineRenderer::OfflineRenderer(
    OutputDevice& outputDevice, VoicePool& voicePool, Acoustics& driverAcoustics, int threads)
    : device(outputDevice)
    , voices(voicePool)
    , acoustics(driverAcoustics)
    , crew(threads)
{
}

bool OfflineRenderer::Open(const char* path, int rateHz)
{
    rate = rateHz;
    block.reserve(static_cast<std::size_t>(rateHz / blocksPerSecond) * channelsOut);
    return sink.Open(path, rateHz);
}

void OfflineRenderer::Render(std::uint32_t elapsedMs, Channels channels)
{
    std::uint64_t left = clock.Advance(elapsedMs, static_cast<std::uint32_t>(rate));
    // The sample frames of this call are shorter than its time by the remainder after it; sounds that begin
    // in it began after the previous call.
    device.SetRenderedFraction(fraction);
    fraction = clock.GetRemainder();
    // Settings made since the last call take effect within the first block.
    bool isFirst = true;
    while (left > 0) {
        const auto largest = static_cast<std::uint64_t>(rate / slicesPerSecond) + 1;
        const std::uint64_t slices = (left + largest - 1) / largest;
        const std::uint64_t slice = (left + slices - 1) / slices;
        // Without resampling by all threads, other threads read during the whole slice.
        isReading = false;
        if (!isShared) {
            BeginReading(channels);
        }
        RenderSlice(slice, isFirst, channels);
        crew.Finish();
        isFirst = false;
        left -= slice;
    }
    voices.Tick(device.GetTime());
    sink.Commit();
}

// To the end of the next slice, which then finds all that it needs, plus the data for a fade-out.
void OfflineRenderer::BeginReading(Channels channels)
{
    crew.Begin(channels, 2 * microsecondsPerSecond / slicesPerSecond + heldMicroseconds);
    isReading = true;
}

void OfflineRenderer::RenderSlice(std::uint64_t left, bool isFirst, Channels channels)
{
    while (left > 0) {
        voices.Tick(device.GetTime());
        const auto largest = static_cast<std::uint64_t>(GetLargestBlock(isFirst, channels));
        isFirst = false;
        // Blocks of equal size: one of a few sample frames would be too short for a change of gain.
        const std::uint64_t blocks = (left + largest - 1) / largest;
        const std::uint64_t sampleFrames = (left + blocks - 1) / blocks;
        RenderBlock(static_cast<int>(sampleFrames), left == sampleFrames, channels);
        left -= sampleFrames;
    }
}

// OpenAL goes over to a new gain within the block, or in a newer version within the beginning of it. Then the
// gain of a fade is a straight line if the block is no longer than that.
int OfflineRenderer::GetLargestBlock(bool isFirst, Channels channels) const
{
    const bool isFading = voices.IsAnyFading();
    const bool isChanging = IsAnythingChanging(channels);
    if ((isFading || isChanging) && device.GetSoftVersion() == SoftVersion::New) {
        return gainRampFrames;
    }
    return rate /
        (isFading                       ? fallsPerSecond
                : isFirst || isChanging ? blocksPerSecond
                                        : steadyBlocksPerSecond);
}

bool OfflineRenderer::IsAnythingChanging(Channels channels) const
{
    return acoustics.IsChanging() || std::any_of(channels.begin(), channels.end(), [](const auto& channel) {
        return channel->IsChanging();
    });
}

void OfflineRenderer::RenderBlock(int sampleFrames, bool isLast, Channels channels)
{
    // Rounded up; otherwise a block could be one sample frame short.
    const std::int64_t blockMicroseconds = (sampleFrames * microsecondsPerSecond + rate - 1) / rate;
    const PumpTargets ahead = {
        blockMicroseconds, minBlockMicroseconds, 2 * blockMicroseconds, blockMicroseconds};
    const std::int64_t blockEnd = device.GetTime() + sampleFrames;
    acoustics.Tick(blockEnd);
    voices.Tick(blockEnd);
    int resampled = 0;
    for (const auto& channel : channels) {
        resampled += channel->BeginRound(ahead, blockEnd) ? sampleFrames : 0;
    }
    isShared = resampled >= minSharedFrames;
    if (isShared) {
        crew.Resample(channels);
    }
    if (isLast && !isReading) {
        BeginReading(channels);
    }
    if (resampled > 0) {
        for (const auto& channel : channels) {
            channel->EndRound(ahead);
        }
    }
    block.resize(static_cast<std::size_t>(sampleFrames) * channelsOut);
    device.Render(block.data(), sampleFrames);
    sink.Write(block);
}

} // namespace Quon
