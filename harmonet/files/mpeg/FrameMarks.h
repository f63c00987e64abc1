#pragma once

#include <array>
#include <cstddef>

namespace Quon
{

/// Where an MPEG frame lies, and which sample frame it begins with.
struct FrameMark
{
    int readPosition;
    int sample;
};

/// The places of the last frames that were decoded: a way back that needs no walk from the start. A plain
/// value.
class FrameMarks
{
public:
    void Clear() { count = 0; }

    /// Keeps the place of the frame decoded now; what lies at or after it is forgotten.
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

    /// The frame to decode from so that sample frame `sample` comes out right: up to `warmUpFrames` before
    /// the one that holds it. Null when no frame at or before it is known.
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
