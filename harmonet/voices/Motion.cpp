#include "harmonet/voices/Motion.h"

#include <cmath>

namespace Quon
{

namespace
{

constexpr double smoothingSeconds = 0.15;

float CalcRemainder(double seconds)
{
    return static_cast<float>(std::exp(-seconds / smoothingSeconds));
}

bool AreOneMotion(const Vector3& a, const Vector3& b, float leap)
{
    return LengthSquared(a - b) <= leap * leap;
}

} // namespace

void Motion::Begin(const Vector3& newPlace, double newTime)
{
    *this = Motion();
    const float sum = newPlace.x + newPlace.y + newPlace.z;
    isPlaced = std::isfinite(sum);
    place = newPlace;
    time = newTime;
}

void Motion::Rest(double seconds)
{
    velocity = velocity * CalcRemainder(seconds);
    last = Vector3();
    isMoving = true;
}

void Motion::MoveTo(const Vector3& newPlace, const UpdateInterval& interval, float leap)
{
    const Vector3 step = newPlace - place;
    if (!isPlaced || !std::isfinite(LengthSquared(step))) {
        Begin(newPlace, interval.end);
        return;
    }
    if (time < interval.begin) {
        Rest(interval.begin - time);
    }
    const double seconds = interval.end - std::fmax(time, interval.begin);
    place = newPlace;
    if (!(seconds > 0.0)) {
        return;
    }
    time = interval.end;
    const Vector3 now = step * static_cast<float>(1.0 / seconds);
    if (AreOneMotion(now, velocity, leap)) {
        const float kept = isMoving ? CalcRemainder(seconds) : 0.0F;
        velocity = now + (velocity - now) * kept;
        isMoving = true;
    }
    else {
        isMoving = AreOneMotion(now, last, leap);
        velocity = isMoving ? now : Vector3();
    }
    last = now;
}

Vector3 Motion::GetVelocity(const UpdateInterval& interval) const
{
    return time < interval.end ? velocity * CalcRemainder(interval.end - time) : velocity;
}

} // namespace Quon
