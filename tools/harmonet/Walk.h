#pragma once

#include "harmonet/engine/Vector.h"

namespace Tool
{

/// The path of a listener who walks past the sounds: parallel to the x axis from left to right, two units in
/// front of the centre, always looking along -z.
class Walk
{
public:
    static constexpr long durationMs = 10'000;

    /// The path begins and ends `newSpan` world units to either side of the centre.
    Walk(const Quon::Vector3& newCentre, float newSpan)
        : centre(newCentre)
        , span(newSpan)
    {
    }

    /// Returns the listener's position after that time. After durationMs it stays at the end of the path.
    Quon::Vector3 GetPosition(long elapsedMs) const;

private:
    Quon::Vector3 centre;
    float span;
};

} // namespace Tool
