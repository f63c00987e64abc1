#pragma once

#include "harmonet/engine/Alloc.h"

#include <algorithm>
#include <cstdint>
#include <span>

namespace Quon
{

/// PCM between the reading of a sound and its conversion to the output's rate: interleaved floats, addressed
/// by the number of the sample frame in the sound's stream. Owned by a channel's feed; under the channel's
/// lock. Allocates only when it has to hold more than ever before.
class PcmFifo
{
public:
    /// Empties it; the next sample frame is number 0.
    void Start(int newWidth)
    {
        width = static_cast<std::size_t>(newWidth);
        samples.clear();
        samples.reserve(usualFrames * width);
        dropped = 0;
        first = 0;
    }

    int GetWidth() const { return static_cast<int>(width); }
    /// The oldest sample frame that is held, and the one after the newest.
    std::int64_t GetBegin() const { return first; }
    std::int64_t GetEnd() const
    {
        return first + static_cast<std::int64_t>((samples.size() - dropped) / width);
    }

    /// Room for more sample frames at the end, to be written at once. Invalidates all spans.
    std::span<float> Extend(int sampleFrames)
    {
        const std::size_t old = samples.size();
        samples.resize(old + width * static_cast<std::size_t>(sampleFrames));
        return std::span(samples).subspan(old);
    }

    /// Takes the last sample frames away again.
    void Shrink(int sampleFrames)
    {
        samples.resize(samples.size() - width * static_cast<std::size_t>(sampleFrames));
    }

    /// The sample frames from number `begin` on, which must be held.
    std::span<const float> From(std::int64_t begin) const
    {
        return std::span(samples).subspan(dropped + width * static_cast<std::size_t>(begin - first));
    }

    /// Forgets all sample frames before number `begin`.
    void DropBefore(std::int64_t begin)
    {
        begin = std::min(begin, GetEnd());
        if (begin <= first) {
            return;
        }
        dropped += width * static_cast<std::size_t>(begin - first);
        first = begin;
        if (2 * dropped >= samples.size()) {
            samples.erase(samples.begin(), samples.begin() + static_cast<std::ptrdiff_t>(dropped));
            dropped = 0;
        }
    }

private:
    static constexpr std::size_t usualFrames = 4096;

    std::size_t width = 1;
    EngineVector<float> samples;
    std::size_t dropped = 0; ///< Samples at the beginning that are held no more.
    std::int64_t first = 0;
};

} // namespace Quon
