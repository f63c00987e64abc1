#pragma once

#include "tools/harmonet/convert/SampleStage.h"

#include <soxr.h>

#include <memory>

namespace Tool
{

/// Changes the sample rate with libsoxr at its "very high" quality.
class Resampler final : public SampleStage
{
public:
    /// `newSource` must outlive this object. Throws a ToolError if libsoxr cannot convert between the rates.
    Resampler(SampleStage& newSource, int newRateHz);

    int GetChannels() const override { return source.GetChannels(); }
    int GetRateHz() const override { return rateHz; }
    std::size_t Read(float* out, std::size_t frames) override;

private:
    struct Delete
    {
        void operator()(soxr* made) const { soxr_delete(made); }
    };

    void Refill();

    SampleStage& source;
    int rateHz;
    std::unique_ptr<soxr, Delete> resampler;
    std::vector<float> buffer;
    std::size_t used = 0; ///< Sample frames of the buffer.
    std::size_t filled = 0;
    bool hasEnded = false; ///< Whether the source has ended.
};

} // namespace Tool
