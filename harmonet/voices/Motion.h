#pragma once

#include "harmonet/Export.h"
#include "harmonet/engine/Alloc.h"
#include "harmonet/engine/Vector.h"

namespace Quon
{

/// The time between two full updates, in seconds on a clock that starts with the sound system.
struct UpdateInterval
{
    double begin = 0.0; ///< When it began.
    double end = 0.0; ///< When it ended.
};

/// Computes the velocity of a point from its positions at the ends of full updates. A plain value of a sound
/// or the listener; task thread only.
///
/// The velocity is smoothed over 150 ms, since a node moved in fixed steps of the game covers different
/// distances in different intervals. The first velocity, and one confirmed after a leap, applies at once.
///
/// Relocating a point is not a motion: a velocity far from both the previous and the smoothed one is a leap
/// and counts as 0 until the next interval confirms it.
class HARMONET_API Motion : public Allocated
{
public:
    /// Records the point's position at the end of the interval; a point that is not moved in an interval has
    /// no velocity in it. Velocities that differ by more than `leap`, in world units per second, do not
    /// belong to one motion. A position that is not finite resets the motion.
    void MoveTo(const Vector3& newPlace, const UpdateInterval& interval, float leap);

    /// World units per second at the end of the interval.
    Vector3 GetVelocity(const UpdateInterval& interval) const;

    /// The time of the last move; initially 0.
    double GetTime() const { return time; }

private:
    void Begin(const Vector3& newPlace, double time);
    void Rest(double seconds);

    Vector3 place;
    Vector3 velocity; ///< Smoothed.
    Vector3 last; ///< Velocity in the last interval alone.
    double time = 0.0; ///< Time of `place`.
    bool isPlaced = false;
    bool isMoving = false; ///< Whether `velocity` applies; otherwise the next one applies at once.
};

} // namespace Quon
