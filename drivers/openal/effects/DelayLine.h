#pragma once

#include "harmonet/engine/Alloc.h"

#include <algorithm>
#include <bit>
#include <cstddef>

namespace Quon
{

/// The latest samples of one channel. A plain value that allocates when it is made.
class DelayLine
{
public:
    /// A line, silent at first, whose samples can be read up to `longest` samples late.
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

    /// The sample that was pushed `delay` samples ago, 1 being the latest.
    float GetTap(std::size_t delay) const { return samples[(newest + 1 - delay) & mask]; }

    void Clear() { std::fill(samples.begin(), samples.end(), 0.0F); }

private:
    EngineVector<float> samples;
    std::size_t mask;
    std::size_t newest = 0;
};

} // namespace Quon
