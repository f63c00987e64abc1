#pragma once

#include "harmonet/voices/Motion.h"

namespace Quon
{

/// The Doppler effect: follows the listener, tracks the time between full updates, and computes the shift of
/// a sound's pitch. Owned by the kernel; task thread only.
class Doppler
{
public:
    /// Smaller changes of pitch, below a third of a cent, are ignored.
    static constexpr float minShift = 0.0002F;
    /// The speed of sound in air, in metres per second.
    static constexpr float defaultSpeed = 343.0F;

    /// 0 turns the effect off.
    void SetFactor(float newFactor);
    float GetFactor() const { return factor; }
    bool IsOn() const { return factor > 0.0F; }

    /// In world units per second; above 0.
    void SetSpeedOfSound(float speed) { speedOfSound = speed; }
    float GetSpeedOfSound() const { return speedOfSound; }

    /// Adds time counted towards the next full update.
    void AddTime(float seconds);

    // Bracket a full update; nodes are followed in between.
    void BeginUpdate();
    void EndUpdate() { isFollowing = false; }

    /// Whether an update with the effect is running.
    bool IsFollowing() const { return isFollowing; }
    /// Records the position of a node; does nothing outside an update or while the effect is off.
    void Follow(Motion& motion, const Vector3& place) const
    {
        if (isFollowing) {
            MoveTo(motion, place);
        }
    }
    void FollowListener(const Vector3& place);
    /// Call it when another microphone becomes the listener, which is not a motion.
    void ForgetListener() { listener = Motion(); }

    /// The factor on the pitch of a sound at `place`, from 0.5 to 2.0. `ownFactor` is the sound's own factor.
    /// Uses the Doppler formula of OpenAL 1.1, with both velocities projected on the line between the two and
    /// limited to half the speed of sound:
    ///
    ///     (c - listener velocity) / (c - source velocity)
    float CalcPitch(const Vector3& place, const Vector3& velocity, float ownFactor) const;
    Vector3 GetVelocity(const Motion& motion) const { return motion.GetVelocity(interval); }

private:
    void MoveTo(Motion& motion, const Vector3& place) const;

    float factor = 0.0F;
    float speedOfSound = defaultSpeed;
    double gathered = 0.0; ///< Seconds since the last full update.
    UpdateInterval interval;
    double onSince = 0.0; ///< Nodes followed before this time may have moved since.
    bool isFollowing = false;
    Vector3 listenerPlace;
    Motion listener;
};

} // namespace Quon
