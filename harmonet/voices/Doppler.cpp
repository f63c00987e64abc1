#include "harmonet/voices/Doppler.h"

#include <algorithm>
#include <cmath>

namespace Quon
{

namespace
{

/// An octave down or up.
constexpr float minPitch = 0.5F;
constexpr float maxPitch = 2.0F;
/// Fractions of the speed of sound.
constexpr float maxVelocity = 0.5F;
constexpr float leapVelocity = 0.125F;

} // namespace

void Doppler::SetFactor(float newFactor)
{
    if (!IsOn() && newFactor > 0.0F) {
        onSince = interval.end;
        ForgetListener();
    }
    factor = newFactor;
}

void Doppler::AddTime(float seconds)
{
    if (seconds > 0.0F && std::isfinite(seconds)) {
        gathered += double{seconds};
    }
}

void Doppler::BeginUpdate()
{
    interval = {interval.end, interval.end + gathered};
    gathered = 0.0;
    isFollowing = IsOn();
}

void Doppler::MoveTo(Motion& motion, const Vector3& place) const
{
    if (motion.GetTime() < onSince) {
        motion = Motion();
    }
    motion.MoveTo(place, interval, leapVelocity * speedOfSound);
}

void Doppler::FollowListener(const Vector3& place)
{
    listenerPlace = place;
    Follow(listener, place);
}

float Doppler::CalcPitch(const Vector3& place, const Vector3& velocity, float ownFactor) const
{
    const Vector3 way = listenerPlace - place;
    const float distance = std::sqrt(LengthSquared(way));
    const float share = factor * ownFactor / distance;
    if (!std::isfinite(share)) {
        return 1.0F;
    }
    const float most = maxVelocity * speedOfSound;
    const float away = std::clamp(Dot(way, GetVelocity(listener)) * share, -most, most);
    const float towards = std::clamp(Dot(way, velocity) * share, -most, most);
    const float pitch = (speedOfSound - away) / (speedOfSound - towards);
    return std::abs(pitch - 1.0F) > minShift ? std::clamp(pitch, minPitch, maxPitch) : 1.0F;
}

} // namespace Quon
