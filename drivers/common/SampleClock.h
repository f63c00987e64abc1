#pragma once

#include <cstdint>

namespace Quon
{

/// Converts steps of milliseconds to whole sample frames and keeps the remainder for the next step, so that
/// the sample frames of any number of uneven steps add up to the floor of the exact sum. One thread at a
/// time.
class SampleClock
{
public:
    /// Returns the sample frames due after `elapsedMs` more milliseconds at `rateHz`. The rate may differ
    /// from step to step: the remainder is kept as a fraction of a sample frame.
    std::uint64_t Advance(std::uint32_t elapsedMs, std::uint32_t rateHz)
    {
        thousandths += std::uint64_t{elapsedMs} * rateHz;
        const std::uint64_t sampleFrames = thousandths / 1000;
        thousandths %= 1000;
        return sampleFrames;
    }

    /// The remainder as a fraction of a sample frame.
    double GetRemainder() const { return static_cast<double>(thousandths) / 1000.0; }

    /// Drops the remainder.
    void Reset() { thousandths = 0; }

private:
    std::uint64_t thousandths = 0; ///< Of a sample frame, below 1000 between the calls.
};

} // namespace Quon
