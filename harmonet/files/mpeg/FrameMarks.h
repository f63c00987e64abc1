#pragma once

#include <array>
#include <cstddef>

namespace Quon
{

/// The position of an MPEG frame and the number of its first sample frame.
struct FrameMark
{
    int readPosition;
    int sample;
};

/// The positions of the last decoded MPEG frames, which allow going back without reading from the start. A
/// plain value.
class FrameMarks
{
public:
    void Clear() { count = 0; }

    /// Adds the MPEG frame being decoded; marks at or after it are dropped.
    void Add(const FrameMark& mark)
    {
        while (count > 0 && Newest().sample >= mark.sample) {
            --count;
        }
        Place(count++) = mark;
        if (count > capacity) {
            first = (first + 1) % capacity;
            count = capacity;
        }
    }

    /// Returns the MPEG frame to start decoding at for correct output from sample frame `sample` on: up to
    /// `warmUpFrames` before the one that contains it. Null if no MPEG frame at or before it is known.
    const FrameMark* Find(int sample, int warmUpFrames) const
    {
        int found = count - 1;
        while (found >= 0 && Place(found).sample > sample) {
            --found;
        }
        return found < 0 ? nullptr : &Place(found > warmUpFrames ? found - warmUpFrames : 0);
    }

private:
    static constexpr int capacity = 64;

    FrameMark& Place(int index) { return marks[static_cast<std::size_t>((first + index) % capacity)]; }
    const FrameMark& Place(int index) const
    {
        return marks[static_cast<std::size_t>((first + index) % capacity)];
    }
    const FrameMark& Newest() const { return Place(count - 1); }

    std::array<FrameMark, capacity> marks = {};
    int first = 0; ///< A ring.
    int count = 0;
};

} // namespace Quon
