#pragma once

#include "drivers/common/SampleClock.h"
#include "drivers/openal/ReadCrew.h"
#include "drivers/openal/WavSink.h"

#include <memory>
#include <span>

namespace Quon
{

/// Renders the output into a WAV file, as fast as it can: each call adds exactly the time that it is told.
/// Over any number of calls the sample frames add up to the floor of the whole time. Owned by the driver;
/// task thread.
///
/// Blocks of at most 40 ms are mixed at a time; of 10 ms at the begin of a call, and while a sound fades or a
/// room changes; and of 5 ms while a sound is falling silent. Beside the mixing other threads read and decode
/// ahead: to the end of the next 50 ms, and what a sound needs to fade out after it.
class OfflineRenderer : public Allocated
{
public:
    using Channels = std::span<const std::unique_ptr<OpenALChannel>>;

    /// `threads` read and decode, the calling one among them.
    OfflineRenderer(
        OutputDevice& outputDevice, VoicePool& voicePool, Acoustics& driverAcoustics, int threads);

    /// False if the file cannot be made.
    bool Open(const char* path, int rateHz);

    /// Needs a FeederScope. The file is whole afterwards.
    void Render(std::uint32_t elapsedMs, Channels channels);

    /// Whether the file has ended before the sound.
    bool HasLostOutput() const { return !sink.IsOpen(); }

private:
    bool IsAnythingChanging(Channels channels) const;
    int GetLargestBlock(bool isFirst, Channels channels) const;
    void RenderSlice(std::uint64_t left, bool isFirst, Channels channels);
    void RenderBlock(int sampleFrames, Channels channels);

    OutputDevice& device;
    VoicePool& voices;
    Acoustics& acoustics;
    int rate = 0;
    SampleClock clock;
    double fraction = 0.0; ///< Left over by the clock at the end of the last call.
    WavSink sink;
    EngineVector<float> block;
    ReadCrew crew;
};

} // namespace Quon
