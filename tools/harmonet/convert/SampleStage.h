#pragma once

#include <cstddef>
#include <vector>

namespace Tool
{

/// One stage of a conversion. Each stage pulls sample frames from the one before it, so that a long file
/// needs no more memory than a short one.
class SampleStage
{
public:
    virtual ~SampleStage() = default;

    virtual int GetChannels() const = 0;
    virtual int GetRateHz() const = 0;

    /// Stores up to `frames` sample frames of interleaved floats, with full scale at 1, and returns their
    /// number; 0 only at the end. Throws a ToolError if the file is damaged.
    virtual std::size_t Read(float* out, std::size_t frames) = 0;
};

/// The number of sample frames that a stage processes at once.
constexpr std::size_t stageFrames = 4096;

/// Returns a buffer for one such block of the stage.
inline std::vector<float> MakeBuffer(const SampleStage& stage)
{
    return std::vector<float>(stageFrames * static_cast<std::size_t>(stage.GetChannels()));
}

} // namespace Tool
