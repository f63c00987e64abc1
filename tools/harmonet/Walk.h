#pragma once

#include "harmonet/engine/Vector.h"

namespace Tool
{

/// The way of a listener who passes by: along the x axis from the left to the right, two units in front of
/// what is passed, always looking along -z.
class Walk
{
public:
    static constexpr long durationMs = 10'000;

    /// `newSpan` is how far to either side of the centre it begins and ends, in world units.
    Walk(const Quon::Vector3& newCentre, float newSpan)
        : centre(newCentre)
        , span(newSpan)
    {
    }

    /// Where the listener is after so long; at the end of the way after the duration.
    Quon::Vector3 GetPosition(long elapsedMs) const;

private:
    Quon::Vector3 centre;
    float span;
};

} // namespace Tool
