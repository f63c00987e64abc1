#include "drivers/common/DriverChannel.h"

#include "harmonet/engine/Messages.h"
#include "harmonet/output/SoundFormat.h"

namespace Quon
{

namespace
{
constexpr int maxBytesPerSample = 4;
constexpr int maxSignalChannels = 64;
constexpr int maxFileRateHz = 768000;
} // namespace

bool IsPlayable(const SoundFormat& format)
{
    return format.GetBytesPerSample() >= 1 && format.GetBytesPerSample() <= maxBytesPerSample &&
        format.GetChannels() >= 1 && format.GetChannels() <= maxSignalChannels &&
        format.GetSampleFrequency() >= 1 && format.GetSampleFrequency() <= maxFileRateHz;
}

void ReportUnplayable(const SoundFormat* format)
{
    if (format) {
        Report(MessageLevel::Error, "the driver cannot play ", format->GetChannels(), " channels of ",
            format->GetBytesPerSample(), " bytes per sample at ", format->GetSampleFrequency(),
            " Hz; the maximum is ", maxSignalChannels, " channels, ", maxBytesPerSample, " bytes and ",
            maxFileRateHz, " Hz");
    }
}

unsigned long ToMilliseconds(std::int64_t sampleFrames, int rateHz)
{
    if (sampleFrames <= 0 || rateHz <= 0) {
        return 0;
    }
    return static_cast<unsigned long>(sampleFrames * 1000 / rateHz);
}

} // namespace Quon
