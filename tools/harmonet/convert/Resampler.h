#pragma once

#include "tools/harmonet/convert/SampleStage.h"

#include <soxr.h>

#include <memory>

namespace Tool
{

/// Changes the rate, at libsoxr's very high quality.
class Resampler final : public SampleStage
{
public:
    /// `source` must live as long as this. Throws a ToolError if the library cannot do it.
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
    std::size_t used = 0; ///< Of the sample frames in the buffer.
    std::size_t filled = 0;
    bool hasEnded = false; ///< The source.
};

} // namespace Tool
