#include "tools/harmonet/convert/Resampler.h"

#include "tools/harmonet/ToolError.h"

namespace Tool
{

namespace
{

void Check(soxr_error_t error)
{
    if (error) {
        throw ToolError(std::string("cannot change the rate: ") + soxr_strerror(error));
    }
}

soxr* Create(const SampleStage& source, int rateHz)
{
    const soxr_quality_spec_t quality = soxr_quality_spec(SOXR_VHQ, 0);
    soxr_error_t error = nullptr;
    soxr* const made = soxr_create(source.GetRateHz(), rateHz, static_cast<unsigned>(source.GetChannels()),
        &error, nullptr, &quality, nullptr);
    Check(error);
    return made;
}

} // namespace

Resampler::Resampler(SampleStage& newSource, int newRateHz)
    : source(newSource)
    , rateHz(newRateHz)
    , resampler(Create(newSource, newRateHz))
    , buffer(MakeBuffer(newSource))
{
}

std::size_t Resampler::Read(float* out, std::size_t frames)
{
    std::size_t given = 0;
    while (given == 0 && frames > 0) {
        Refill();
        const bool isFlushing = hasEnded && used == filled;
        const std::size_t channels = static_cast<std::size_t>(source.GetChannels());
        std::size_t taken = 0;
        Check(soxr_process(resampler.get(), isFlushing ? nullptr : buffer.data() + used * channels,
            filled - used, &taken, out, frames, &given));
        used += taken;
        if (isFlushing) {
            break;
        }
    }
    return given;
}

void Resampler::Refill()
{
    if (used < filled || hasEnded) {
        return;
    }
    used = 0;
    filled = source.Read(buffer.data(), stageFrames);
    hasEnded = filled == 0;
}

} // namespace Tool
