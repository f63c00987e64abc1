#pragma once

#include "harmonet/engine/Alloc.h"

#include <algorithm>
#include <cstdint>
#include <span>

namespace Quon
{

/// Buffers PCM between the reading of a sound and its conversion to the output's rate: interleaved floats,
/// addressed by sample frame number in the sound's stream. Owned by a channel's feed; guarded by the
/// channel's lock. Allocates only to hold more than ever before.
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
    /// The oldest sample frame in the buffer, and the one after the newest.
    std::int64_t GetBegin() const { return first; }
    std::int64_t GetEnd() const
    {
        return first + static_cast<std::int64_t>((samples.size() - dropped) / width);
    }

    /// Adds room for sample frames at the end, which the caller must write at once. Invalidates all spans.
    std::span<float> Extend(int sampleFrames)
    {
        const std::size_t old = samples.size();
        samples.resize(old + width * static_cast<std::size_t>(sampleFrames));
        return std::span(samples).subspan(old);
    }

    /// Removes the last sample frames.
    void Shrink(int sampleFrames)
    {
        samples.resize(samples.size() - width * static_cast<std::size_t>(sampleFrames));
    }

    /// The sample frames from number `begin` on, which must be in the buffer.
    std::span<const float> From(std::int64_t begin) const
    {
        return std::span(samples).subspan(dropped + width * static_cast<std::size_t>(begin - first));
    }

    /// Drops all sample frames before number `begin`.
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
    std::size_t dropped = 0; ///< Dropped samples at the beginning.
    std::int64_t first = 0;
};

} // namespace Quon
