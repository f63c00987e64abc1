#pragma once

#include "drivers/common/SampleClock.h"
#include "drivers/openal/ReadCrew.h"
#include "drivers/openal/WavSink.h"

#include <memory>
#include <span>

namespace Quon
{

/// Renders the output to a WAV file as fast as possible: each call adds exactly the given time. Over any
/// number of calls the sample frames add up to the floor of the total time. Owned by the driver; task thread.
///
/// Blocks of at most 40 ms are mixed at a time; of 10 ms at the beginning of a call, and while a sound fades
/// or a room changes; and of 5 ms while a stopped sound fades out. Other threads help to resample before a
/// block is mixed. During mixing they read and decode ahead: to the end of the next 50 ms, plus the data for
/// a fade-out after it.
class OfflineRenderer : public Allocated
{
public:
    using Channels = std::span<const std::unique_ptr<OpenALChannel>>;

    /// `threads` is the number of threads that read, decode and resample, including the calling one.
    OfflineRenderer(
        OutputDevice& outputDevice, VoicePool& voicePool, Acoustics& driverAcoustics, int threads);

    /// Returns false if the file cannot be created.
    bool Open(const char* path, int rateHz);

    /// Needs a FeederScope. The file is complete afterwards.
    void Render(std::uint32_t elapsedMs, Channels channels);

    /// Whether the file has ended before the output.
    bool HasLostOutput() const { return !sink.IsOpen(); }

private:
    bool IsAnythingChanging(Channels channels) const;
    int GetLargestBlock(bool isFirst, Channels channels) const;
    void BeginReading(Channels channels);
    void RenderSlice(std::uint64_t left, bool isFirst, Channels channels);
    void RenderBlock(int sampleFrames, bool isLast, Channels channels);

    OutputDevice& device;
    VoicePool& voices;
    Acoustics& acoustics;
    int rate = 0;
    SampleClock clock;
    double fraction = 0.0; ///< Remainder of the clock at the end of the last call.
    WavSink sink;
    EngineVector<float> block;
    ReadCrew crew;
    bool isReading = false; ///< The crew has begun to read ahead in this slice.
    bool isShared = false; ///< All threads have resampled the last block.
};

} // namespace Quon
