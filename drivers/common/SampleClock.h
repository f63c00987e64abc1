#pragma once

#include <cstdint>

namespace Quon
{

/// Turns steps of milliseconds into whole sample frames and keeps what is left over for the next step, so
/// that the frames of any number of uneven steps add up to the floor of the exact sum. Owned by whoever
/// counts; one thread.
class SampleClock
{
public:
    /// The sample frames that are due after `elapsedMs` more milliseconds at `rateHz`. The rate may differ
    /// from step to step: the remainder is kept as a part of a sample frame.
    std::uint64_t Advance(std::uint32_t elapsedMs, std::uint32_t rateHz)
    {
        thousandths += std::uint64_t{elapsedMs} * rateHz;
        const std::uint64_t sampleFrames = thousandths / 1000;
        thousandths %= 1000;
        return sampleFrames;
    }

    /// What is left over, as a part of a sample frame.
    double GetRemainder() const { return static_cast<double>(thousandths) / 1000.0; }

    /// Drops the remainder.
    void Reset() { thousandths = 0; }

private:
    std::uint64_t thousandths = 0; ///< Of a sample frame, below 1000 between the calls.
};

} // namespace Quon
