#include "harmonet/instances/Microphone.h"

#include "harmonet/engine/Matrix.h"
#include "harmonet/engine/Messages.h"
#include "harmonet/engine/Quaternion.h"
#include "harmonet/instances/Axes.h"
#include "harmonet/kernel/SndKernel.h"
#include "harmonet/output/SndDriver.h"

#include <cmath>

namespace Quon
{

namespace
{

constexpr int nodeID = 15;

// The two count as parallel if the squared length of front × top is not above this.
constexpr float parallelLimit = 1e-8F;

SndDriver* GetDriver()
{
    return theKernel ? theKernel->GetDriver() : nullptr;
}

} // namespace

Microphone::Microphone()
    : active(false)
    , changed(true)
    , hasFXEnvReverb(false)
{
    boundingRadius = 1.0F;
}

Microphone::~Microphone()
{
    if (theKernel) {
        theKernel->ClearMicrophone(this);
    }
}

int Microphone::GetID() const
{
    return nodeID;
}

void Microphone::Activate()
{
    if (!theKernel) {
        return;
    }
    changed = true;
    theKernel->SetMicrophone(this);
}

void Microphone::SetActive(bool on)
{
    active = on;
    if (!on) {
        return;
    }
    changed = true;
    SndUpdate();
    SndDriver* driver = GetDriver();
    if (hasFXEnvReverb && driver) {
        hasFXEnvReverb = driver->SetFXEnvReverb(&envReverb, envReverbQuality, envReverbArg);
    }
}

void Microphone::ResetGlobalBoundingCenter() const
{
    changed = true;
    globalPositionStale = true;
}

Vector3 Microphone::GetGlobalPosition()
{
    if (globalPositionStale) {
        RecalculateGlobalBoundingCenter();
    }
    return globalPosition;
}

void Microphone::SndUpdate()
{
    if (!changed || !active || !theKernel) {
        return;
    }
    SndDriver* driver = GetDriver();
    const Vector3 place = GetGlobalPosition();
    if (driver && IsFinite(place)) {
        driver->SetListenerPosition(place);
    }
    Quaternion q = GetOrientation();
    if (GetParent()) {
        GetParent()->LocalToGlobal(q);
    }
    const Vector3 front = -ImageOfZ(q);
    const Vector3 top = ImageOfY(q);
    if (driver && IsFinite(front) && IsFinite(top)) {
        driver->SetListenerOrientation(front, top);
    }
    changed = false;
}

void Microphone::SetOrientation(const Vector3& front, const Vector3& top)
{
    const float lengthSqr = LengthSquared(front);
    if (!(lengthSqr > 0.0F) || !std::isfinite(lengthSqr)) {
        return;
    }
    const Vector3 ahead = front * (1.0F / std::sqrt(lengthSqr));
    Vector3 right = Cross(ahead, top);
    Vector3 up = {0.0F, 1.0F, 0.0F};
    const float rightSqr = LengthSquared(right);
    if (rightSqr > parallelLimit && std::isfinite(rightSqr)) {
        right = right * (1.0F / std::sqrt(rightSqr));
        up = Cross(right, ahead);
    }
    else {
        right = {1.0F, 0.0F, 0.0F};
    }
    Quaternion rotation;
    rotation.Set(Matrix3{{right, up, -ahead}});
    Particle::SetOrientation(rotation);
}

void Microphone::SetOrientation(const Quaternion& newOrientation)
{
    Particle::SetOrientation(newOrientation);
}

void Microphone::SetRolloffFactor(float factor)
{
    if (SndDriver* driver = GetDriver()) {
        driver->SetRolloffFactor(factor);
    }
}

float Microphone::GetRolloffFactor() const
{
    SndDriver* driver = GetDriver();
    return driver ? driver->GetRolloffFactor() : 1.0F;
}

bool Microphone::SetFXEnvReverb(const FXEnvReverb* reverb, long quality, unsigned int argument)
{
    if (!theKernel) {
        return false;
    }
    envReverb = *reverb;
    envReverbQuality = quality;
    envReverbArg = argument;
    SndDriver* driver = active ? GetDriver() : nullptr;
    hasFXEnvReverb = !driver || driver->SetFXEnvReverb(reverb, quality, argument);
    if (!hasFXEnvReverb) {
        Report(MessageLevel::Warning, "the driver refuses the room of a microphone");
    }
    return hasFXEnvReverb;
}

void Microphone::ResetFXEnvReverb(unsigned int argument)
{
    SndDriver* driver = active ? GetDriver() : nullptr;
    if (driver) {
        driver->ResetFXEnvReverb(argument);
    }
    hasFXEnvReverb = false;
}

bool Microphone::GetFXEnvReverb(FXEnvReverb* reverb)
{
    if (!hasFXEnvReverb) {
        return false;
    }
    *reverb = envReverb;
    return true;
}

} // namespace Quon
