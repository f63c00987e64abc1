#pragma once

#include "drivers/common/SampleClock.h"
#include "drivers/openal/OpenALChannel.h"
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
/// room changes; and of 5 ms while a sound is falling silent, since that takes one block. Channels are read
/// as far ahead of a block as a sound needs to fall silent after it.
class OfflineRenderer : public Allocated
{
public:
    using Channels = std::span<const std::unique_ptr<OpenALChannel>>;

    OfflineRenderer(OutputDevice& outputDevice, VoicePool& voicePool, Acoustics& driverAcoustics);

    /// False if the file cannot be made.
    bool Open(const char* path, int rateHz);

    /// Needs a FeederScope. The file is whole afterwards.
    void Render(std::uint32_t elapsedMs, Channels channels);

    /// Whether the file has ended before the sound.
    bool HasLostOutput() const { return !sink.IsOpen(); }

private:
    bool IsAnythingChanging(Channels channels) const;
    void RenderBlock(int sampleFrames, Channels channels);

    OutputDevice& device;
    VoicePool& voices;
    Acoustics& acoustics;
    int rate = 0;
    SampleClock clock;
    WavSink sink;
    EngineVector<float> block;
};

} // namespace Quon
