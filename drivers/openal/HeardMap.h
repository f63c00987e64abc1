#pragma once

#include "harmonet/engine/Alloc.h"

#include <algorithm>
#include <cstdint>

namespace Quon
{

/// Which sample frame of a sound's stream is heard at a sample frame of what is queued: the two differ where
/// the rate is converted, by silence before the sound, and by a change of rate in the middle. Owned by a
/// channel, under its mutex for the output. Allocates until it has seen the deepest queue.
class HeardMap
{
public:
    void Clear()
    {
        marks.clear();
        marks.reserve(usualMarks);
        end = {};
    }

    /// A block was queued: its sample frames from number `queued` on, which follow what was queued before,
    /// begin at `stream`.
    void Add(std::int64_t queued, double stream) { marks.push_back({queued, stream}); }
    /// And all that is queued now ends here.
    void SetEnd(std::int64_t queued, double stream) { end = {queued, stream}; }

    /// The sample frame of the stream at a sample frame of the queue.
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

    /// Forgets what is over once `queued` is heard.
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
