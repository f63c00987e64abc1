#pragma once

#include "harmonet/Export.h"
#include "harmonet/engine/Vector.h"

namespace Quon
{

/// The time between two full updates, in seconds on a clock that starts with the sound system.
struct UpdateInterval
{
    double begin = 0.0;
    double end = 0.0;
};

/// How fast a point moves, from where it was at the ends of full updates. A plain value, of a sound or of the
/// listener; task thread only.
///
/// The velocity is smoothed over 150 ms, since a node that is moved by a fixed step of the game covers more
/// in one interval than in the next. The first velocity, and one that is confirmed after a leap, counts at
/// once.
///
/// A point that is put elsewhere does not move: a velocity that is far from both the one before and the
/// smoothed one is a leap and counts as none, until the next interval confirms it.
class HARMONET_API Motion
{
public:
    /// The point is at `newPlace` at the end of the interval; a point that is not moved in an interval stands
    /// still in it. Velocities that differ by more than `leap`, in world units per second, are not one
    /// motion. A place that is not finite begins anew.
    void MoveTo(const Vector3& newPlace, const UpdateInterval& interval, float leap);

    /// World units per second at the end of the interval.
    Vector3 GetVelocity(const UpdateInterval& interval) const;

    /// When it was moved last; 0 at first.
    double GetTime() const { return time; }

private:
    void Begin(const Vector3& newPlace, double time);
    void Rest(double seconds);

    Vector3 place;
    Vector3 velocity; ///< Smoothed.
    Vector3 last; ///< That of the last interval alone.
    double time = 0.0; ///< Of `place`.
    bool isPlaced = false;
    bool isMoving = false; ///< `velocity` counts; otherwise the next one does at once.
};

} // namespace Quon
