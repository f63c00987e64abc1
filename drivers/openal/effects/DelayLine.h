#pragma once

#include "harmonet/engine/Alloc.h"

#include <algorithm>
#include <bit>
#include <cstddef>

namespace Quon
{

/// A delay line for one channel. A plain value whose construction allocates.
class DelayLine
{
public:
    /// Constructs a silent line with delays of up to `longest` samples.
    explicit DelayLine(int longest)
        : samples(std::bit_ceil(static_cast<std::size_t>(longest) + 1))
        , mask(samples.size() - 1)
    {
    }

    void Push(float sample)
    {
        newest = (newest + 1) & mask;
        samples[newest] = sample;
    }

    /// The sample pushed `delay` samples ago; 1 is the latest.
    float GetTap(std::size_t delay) const { return samples[(newest + 1 - delay) & mask]; }

    void Clear() { std::fill(samples.begin(), samples.end(), 0.0F); }

private:
    EngineVector<float> samples;
    std::size_t mask;
    std::size_t newest = 0;
};

} // namespace Quon
