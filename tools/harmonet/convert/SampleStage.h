#pragma once

#include <cstddef>
#include <vector>

namespace Tool
{

/// One step on the way from a file to a converted file. It is asked for sample frames by the next step, and
/// asks the one before it in turn, so that a long file takes no more memory than a short one.
class SampleStage
{
public:
    virtual ~SampleStage() = default;

    virtual int GetChannels() const = 0;
    virtual int GetRateHz() const = 0;

    /// Stores up to `frames` sample frames of interleaved floats, with full scale at 1, and returns how many;
    /// 0 only at the end. Throws a ToolError if the file is damaged.
    virtual std::size_t Read(float* out, std::size_t frames) = 0;
};

/// How many sample frames the steps handle at once.
constexpr std::size_t stageFrames = 4096;

/// Room for one such piece of that stage.
inline std::vector<float> MakeBuffer(const SampleStage& stage)
{
    return std::vector<float>(stageFrames * static_cast<std::size_t>(stage.GetChannels()));
}

} // namespace Tool
