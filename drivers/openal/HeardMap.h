#pragma once

#include "harmonet/engine/Alloc.h"

#include <algorithm>
#include <cstdint>

namespace Quon
{

/// Maps sample frames of the queue to sample frames of the sound's stream: the two differ by rate conversion,
/// by silence before the sound, and by a change of rate in the middle. Owned by a channel and guarded by its
/// output mutex. Allocates until it has reached the longest queue.
class HeardMap
{
public:
    void Clear()
    {
        marks.clear();
        marks.reserve(usualMarks);
        end = {};
    }

    /// Records a queued block: its sample frames begin at number `queued`, which follows the previous block,
    /// and at `stream`.
    void Add(std::int64_t queued, double stream) { marks.push_back({queued, stream}); }
    /// Records the end of everything queued so far.
    void SetEnd(std::int64_t queued, double stream) { end = {queued, stream}; }

    /// Returns the sample frame of the stream at a sample frame of the queue.
    double At(std::int64_t queued) const
    {
        if (marks.empty()) {
            return end.stream;
        }
        const auto after = std::upper_bound(marks.begin(), marks.end(), queued,
            [](std::int64_t wanted, const Mark& mark) { return wanted < mark.queued; });
        if (after == marks.begin()) {
            return after->stream;
        }
        const Mark& from = *(after - 1);
        const Mark& to = after == marks.end() ? end : *after;
        if (queued >= to.queued) {
            return to.stream;
        }
        const double share =
            static_cast<double>(queued - from.queued) / static_cast<double>(to.queued - from.queued);
        return from.stream + share * (to.stream - from.stream);
    }

    /// Drops the marks that are not needed from `queued` on.
    void DropBefore(std::int64_t queued)
    {
        const auto kept = std::find_if(
            marks.begin(), marks.end(), [queued](const Mark& mark) { return mark.queued > queued; });
        if (kept - marks.begin() > 1) {
            marks.erase(marks.begin(), kept - 1);
        }
    }

private:
    struct Mark
    {
        std::int64_t queued = 0;
        double stream = 0.0;
    };

    static constexpr int usualMarks = 16;

    EngineVector<Mark> marks; ///< Ascending.
    Mark end;
};

} // namespace Quon
