#include "harmonet/instances/Snd3D.h"

#include "harmonet/instances/Axes.h"
#include "harmonet/kernel/SndKernel.h"
#include "harmonet/output/SndChannel.h"

#include <cmath>
#include <limits>

namespace Quon
{

namespace
{

constexpr int nodeID = 16;

// On the squared distance: about 1 % of the distance itself. Between the two limits a sound stays as it is,
// so that one at the edge does not flip at each update.
constexpr float outerBand = 1.02F;

} // namespace

float Snd3D::silenceValue = -30.0F;

Snd3D::Snd3D()
    : SndBase(false)
{
    AddFlags(Flag3D);
}

Snd3D::Snd3D(const Snd3D& other)
    : Particle()
    , Snd3DRange(other)
    , SndBase(other)
    , innerConeAngle(other.innerConeAngle)
    , outerConeAngle(other.outerConeAngle)
    , coneGain(other.coneGain)
    , axis(other.axis)
{
    hasMoved = true;
    AddFlags(Flag3D);
}

Snd3D& Snd3D::operator=(const Snd3D& other) = default;

Snd3D::~Snd3D()
{
    // While the whole object is there: who hears of its end may still ask for its place.
    Done();
}

int Snd3D::GetID() const
{
    return nodeID;
}

void Snd3D::ResetGlobalBoundingCenter() const
{
    hasMoved = true;
    globalPositionStale = true;
}

void Snd3D::BindAxisToDirection(int newAxis)
{
    axis = newAxis;
}

void Snd3D::InitCone(float inner, float outer, float newConeGain)
{
    innerConeAngle = inner;
    outerConeAngle = outer;
    coneGain = newConeGain;
}

void Snd3D::SetCone(float inner, float outer, float newConeGain)
{
    InitCone(inner, outer, newConeGain);
    if (SndChannel* channel = GetSndChannel())
        channel->SetCone(inner, outer, newConeGain);
}

void Snd3D::InitMinMaxDistance(float newMinDistance, float newMaxDistance, bool newCutout)
{
    minDistance = newMinDistance;
    maxDistance = newMaxDistance;
    cutout = newCutout;
}

void Snd3D::SetMinMaxDistance(float newMinDistance, float newMaxDistance, bool newCutout)
{
    InitMinMaxDistance(newMinDistance, newMaxDistance, newCutout);
    if (SndChannel* channel = GetSndChannel())
        channel->SetMinMaxDistance(newMinDistance, newMaxDistance, newCutout);
}

void Snd3D::Play(SndFile* file)
{
    if (SndChannel* channel = GetSndChannel()) {
        if (IsConeInUse())
            channel->SetCone(innerConeAngle, outerConeAngle, coneGain);
        channel->SetMinMaxDistance(minDistance, maxDistance, cutout);
        UpdatePosition();
        // The next update works out the distance anew.
        hasMoved = true;
    }
    SndBase::Play(file);
}

void Snd3D::CalcDistSqr(const Vector3& listener)
{
    if (globalPositionStale)
        RecalculateGlobalBoundingCenter();
    const float x = globalPosition.x - listener.x;
    const float y = globalPosition.y - listener.y;
    const float z = globalPosition.z - listener.z;
    distSqr = x * x + y * y + z * z;
    if (std::isnan(distSqr))
        distSqr = std::numeric_limits<float>::infinity();
    ClearFlags(FlagDistLTMax | FlagDistGTMax);
    const float maxDistSqr = maxDistance * maxDistance;
    if (!cutout || maxDistSqr > distSqr)
        AddFlags(FlagDistLTMax);
    else if (maxDistSqr * outerBand < distSqr)
        AddFlags(FlagDistGTMax);
}

bool Snd3D::SndUpdate(float seconds, const Vector3& listener, bool listenerMoved)
{
    if (GetInPause())
        return true;
    if (listenerMoved || hasMoved)
        CalcDistSqr(listener);
    if (hasMoved && IsMovable() && GetSndChannel())
        UpdatePosition();
    hasMoved = false;
    return SndBase::SndUpdate(seconds, listener, listenerMoved);
}

void Snd3D::UpdatePosition()
{
    if (globalPositionStale)
        RecalculateGlobalBoundingCenter();
    SndChannel* channel = GetSndChannel();
    if (IsFinite(globalPosition))
        channel->SetPosition(globalPosition);
    if (!IsConeInUse())
        return;
    const Vector3 direction = CalcDirection();
    if (IsFinite(direction))
        channel->SetDirection(direction);
}

Vector3 Snd3D::CalcDirection() const
{
    Quaternion global = orientation;
    if (GetParent())
        GetParent()->LocalToGlobal(global);
    switch (axis) {
    case 1:
        return ImageOfX(global);
    case 2:
        return ImageOfY(global);
    case 3:
        return ImageOfZ(global);
    case -1:
        return -ImageOfX(global);
    case -2:
        return -ImageOfY(global);
    default:
        return -ImageOfZ(global);
    }
}

bool Snd3D::SetFXEnvReverbSourceProperties(const FXEnvReverbSourceProperties* properties)
{
    if (!theKernel || !theKernel->CanSetEnvReverbSource())
        return false;
    OwnFXList();
    fxList.AddFX(SndFXEnvReverbSource, properties, sizeof *properties, defaultEnvReverbQuality);
    SndChannel* channel = GetSndChannel();
    return !channel || channel->SetFXEnvReverbSourceProperties(properties);
}

bool Snd3D::GetFXEnvReverbSourceProperties(FXEnvReverbSourceProperties* properties)
{
    return GetEffect(SndFXEnvReverbSource, properties, &SndChannel::GetFXEnvReverbSourceProperties);
}

} // namespace Quon
