#pragma once

#include "harmonet/kernel/Motion.h"

namespace Quon
{

/// The Doppler effect: follows the listener, keeps the time between full updates, and works out by how much a
/// sound's pitch is shifted. Owned by the kernel; task thread only.
class Doppler
{
public:
    /// A change of pitch by less, a third of a cent, counts as none.
    static constexpr float leastShift = 0.0002F;

    /// 0 turns the effect off.
    void SetFactor(float newFactor);
    float GetFactor() const { return factor; }
    bool IsOn() const { return factor > 0.0F; }

    /// In world units per second; above 0.
    void SetSpeedOfSound(float speed) { speedOfSound = speed; }
    float GetSpeedOfSound() const { return speedOfSound; }

    /// So much time has been counted towards the next full update.
    void AddTime(float seconds);

    // These two stand around a full update; in between nodes are followed.
    void BeginUpdate();
    void EndUpdate() { isFollowing = false; }

    /// Where a node is; does nothing outside of an update and while the effect is off.
    void Follow(Motion& motion, const Vector3& place) const
    {
        if (isFollowing) {
            MoveTo(motion, place);
        }
    }
    void FollowListener(const Vector3& place);
    /// Another microphone is the listener now: that is no motion.
    void ForgetListener() { listener = Motion(); }

    /// The factor on the pitch of a sound at `place`, from 0.5 to 2.0. `ownFactor` is the sound's. By the
    /// formula of the OpenAL specification, in which both velocities count along the line between the two,
    /// and at most half of the speed of sound:
    ///
    ///     (c - listener velocity) / (c - source velocity)
    float CalcPitch(const Vector3& place, const Vector3& velocity, float ownFactor) const;
    Vector3 GetVelocity(const Motion& motion) const { return motion.GetVelocity(interval); }

private:
    void MoveTo(Motion& motion, const Vector3& place) const;

    float factor = 0.0F;
    float speedOfSound = 343.0F;
    double gathered = 0.0; ///< Seconds since the last full update.
    UpdateInterval interval;
    double onSince = 0.0; ///< What has been followed before may have moved since.
    bool isFollowing = false;
    Vector3 listenerPlace;
    Motion listener;
};

} // namespace Quon
