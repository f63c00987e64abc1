#include "harmonet/instances/Snd3D.h"

#include "harmonet/definitions/SoundResource.h"
#include "harmonet/instances/Axes.h"
#include "harmonet/instances/OrNothing.h"
#include "harmonet/instances/SndBaseRow.h"
#include "harmonet/kernel/SndKernel.h"
#include "harmonet/output/SndChannel.h"
#include "harmonet/voices/Motion.h"

#include <algorithm>
#include <cmath>

namespace Quon
{

namespace
{

constexpr int nodeID = 16;

Vector3 ImageOfAxis(const Quaternion& rotation, int axis)
{
    switch (axis) {
    case 1:
        return ImageOfX(rotation);
    case 2:
        return ImageOfY(rotation);
    case 3:
        return ImageOfZ(rotation);
    case -1:
        return -ImageOfX(rotation);
    case -2:
        return -ImageOfY(rotation);
    default:
        return -ImageOfZ(rotation);
    }
}

} // namespace

float Snd3D::silenceValue = -30.0F;

Snd3D::Snd3D()
    : SndBase(false)
{
    AddFlags(Flag3D);
    Row().NoteMove();
}

Snd3D::Snd3D(const Snd3D& other)
    : Particle()
    , SndBase(other)
{
    AddFlags(Flag3D);
    Row().NoteMove();
    CopyCone(other);
    InitMinMaxDistance(other.minDistance, other.GetMaxDistance(), other.GetCutout());
}

Snd3D& Snd3D::operator=(const Snd3D& other)
{
    Particle::operator=(other);
    SndBase::operator=(other);
    CopyCone(other);
    InitMinMaxDistance(other.minDistance, other.GetMaxDistance(), other.GetCutout());
    SetHasMoved(other.Row().HasMark(RowMoved));
    return *this;
}

Snd3D::~Snd3D()
{
    // While the object is complete: an observer of its end may still query its position.
    Done();
}

int Snd3D::GetID() const
{
    return nodeID;
}

void Snd3D::ResetGlobalBoundingCenter() const
{
    Row().NoteMove();
    globalPositionStale = true;
}

void Snd3D::OnParentDestroyed()
{
    // A destructor calls this: if memory for the rotation runs out, the sound keeps its local values.
    OrNothing([this] {
        // The ancestors may already have been destroyed.
        const Vector3 place = Row().HasMark(RowPlaced) ? globalPosition : GetGlobalPosition();
        Quaternion turned = GetOrientation();
        GetParent()->LocalToGlobal(turned);
        SetOrientation(turned);
        SetPosition(place);
        return true;
    });
}

void Snd3D::SetHasMoved(bool on)
{
    Row().SetMark(RowMoved, on);
}

bool Snd3D::GetCutout() const
{
    return Row().HasMark(RowCutout);
}

float Snd3D::GetMaxDistance() const
{
    return Row().MaxDistance();
}

void Snd3D::BindAxisToDirection(int newAxis)
{
    const bool isValid = newAxis >= -3 && newAxis <= 3;
    coneAxis = static_cast<std::int8_t>(isValid ? newAxis : defaultAxis);
}

void Snd3D::InitCone(float inner, float outer, float newConeGain)
{
    const bool hasEffect = inner < 180.0F && newConeGain < 1.0F;
    if (hasEffect) {
        SetExtra(&Extras::innerConeAngle, inner);
        SetExtra(&Extras::outerConeAngle, outer);
        SetExtra(&Extras::coneGain, newConeGain);
    }
    isConeInUse = hasEffect;
}

void Snd3D::CopyCone(const Snd3D& other)
{
    const Extras& from = other.GetExtras();
    SetExtra(&Extras::innerConeAngle, from.innerConeAngle);
    SetExtra(&Extras::outerConeAngle, from.outerConeAngle);
    SetExtra(&Extras::coneGain, from.coneGain);
    SetExtra(&Extras::doppler, from.doppler);
    isConeInUse = other.isConeInUse;
    coneAxis = other.coneAxis;
}

void Snd3D::SetCone(float inner, float outer, float newConeGain)
{
    InitCone(inner, outer, newConeGain);
    if (SndChannel* channel = GetSndChannel()) {
        channel->SetCone(inner, outer, newConeGain);
    }
}

void Snd3D::InitMinMaxDistance(float newMinDistance, float newMaxDistance, bool newCutout)
{
    minDistance = newMinDistance;
    Row().MaxDistance() = newMaxDistance;
    Row().SetMark(RowCutout, newCutout);
}

void Snd3D::SetMinMaxDistance(float newMinDistance, float newMaxDistance, bool newCutout)
{
    InitMinMaxDistance(newMinDistance, newMaxDistance, newCutout);
    if (SndChannel* channel = GetSndChannel()) {
        channel->SetMinMaxDistance(newMinDistance, newMaxDistance, newCutout);
    }
}

void Snd3D::Play(SndFile* file)
{
    if (SndChannel* channel = GetSndChannel()) {
        if (isConeInUse) {
            const Extras& cone = GetExtras();
            channel->SetCone(cone.innerConeAngle, cone.outerConeAngle, cone.coneGain);
        }
        channel->SetMinMaxDistance(minDistance, GetMaxDistance(), GetCutout());
        UpdatePosition();
        // The next update recomputes the distance.
        SetHasMoved(true);
    }
    SndBase::Play(file);
}

void SndBase::UpdatePlaces(SoundBlock& block)
{
    const bool isFollowing = theKernel && theKernel->GetDoppler().IsFollowing();
    block.ForEachUnplaced([&block, isFollowing](std::uint32_t lane) {
        const SoundRow row(block, lane);
        auto* sound = static_cast<Snd3D*>(row.GetSound());
        if (isFollowing) {
            sound->UpdatePlace(row);
        }
        else {
            row.SetPlace(sound->GetGlobalPosition());
        }
    });
}

void SndBase::SendMove(SoundRow row)
{
    auto* sound = static_cast<Snd3D*>(row.GetSound());
    if (sound->IsMovable() && sound->GetSndChannel()) {
        sound->UpdatePosition();
    }
    row.SetMark(RowMoved, false);
}

void Snd3D::UpdatePlace(SoundRow row)
{
    row.SetPlace(GetGlobalPosition());
    if (theKernel && theKernel->GetDoppler().IsFollowing()) {
        std::unique_ptr<Motion>& motion = UseExtras().motion;
        if (!motion) {
            motion = std::make_unique<Motion>();
        }
        theKernel->GetDoppler().Follow(*motion, row.GetPlace());
    }
}

void Snd3D::SetDoppler(float factor)
{
    if (!std::isnan(factor)) {
        SetExtra(&Extras::doppler, std::clamp(factor, 0.0F, maxDopplerFactor));
    }
}

void Snd3D::UpdatePitch(SndChannel& channel, bool isNew)
{
    const Doppler& effect = theKernel->GetDoppler();
    if (isNew) {
        SetExtra(&Extras::sentPitch, 1.0F);
    }
    if ((!effect.IsOn() && GetExtras().sentPitch == 1.0F) || HasAnyFlag(FlagPolylineSource)) {
        return;
    }
    if (Row().IsUnplaced()) {
        UpdatePlace(Row());
    }
    const Extras& extra = GetExtras();
    const Vector3 velocity = IsMovable() && extra.motion ? effect.GetVelocity(*extra.motion) : Vector3();
    const float pitch = effect.CalcPitch(Row().GetPlace(), velocity, extra.doppler);
    const float sent = extra.sentPitch;
    if (pitch != sent && (pitch == 1.0F || std::abs(pitch - sent) > Doppler::minShift)) {
        SetExtra(&Extras::sentPitch, pitch);
        channel.SetPitch(pitch);
    }
}

void Snd3D::CalcDistSqr(const Vector3& listener)
{
    const SoundRow row = Row();
    if (row.IsUnplaced()) {
        UpdatePlace(row);
    }
    MeasureDistance(row, listener);
}

float Snd3D::CalcLevel(const Vector3* listener) const
{
    if (!listener) {
        return 0.0F;
    }
    const Vector3 way = GetGlobalPosition() - *listener;
    const float distance = std::sqrt(Dot(way, way));
    const float maxDistance = GetMaxDistance();
    if (!IsFinite(way) || (GetCutout() && distance > maxDistance)) {
        return 0.0F;
    }
    // Inverse distance, as in the drivers' attenuation. Without a minimum it is full gain.
    const float nearest = std::max(minDistance, 0.0F);
    const float counted = std::min(distance, std::max(maxDistance, nearest));
    return counted > nearest && nearest > 0.0F ? GetOutputGain() * nearest / counted : GetOutputGain();
}

bool Snd3D::SndUpdate(float seconds, const Vector3& listener, bool listenerMoved)
{
    if (GetInPause()) {
        return true;
    }
    const bool hasMoved = Row().HasMark(RowMoved);
    if (listenerMoved || hasMoved) {
        Snd3D::CalcDistSqr(listener);
    }
    if (hasMoved && IsMovable() && GetSndChannel()) {
        UpdatePosition();
    }
    SetHasMoved(false);
    return SndBase::SndUpdate(seconds, listener, listenerMoved);
}

void Snd3D::UpdatePosition()
{
    if (globalPositionStale) {
        RecalculateGlobalBoundingCenter();
    }
    Row().SetMark(RowPlaced, true);
    SndChannel* channel = GetSndChannel();
    if (IsFinite(globalPosition)) {
        channel->SetPosition(globalPosition);
    }
    if (isConeInUse) {
        SendDirection(*channel);
    }
}

void Snd3D::SendDirection(SndChannel& channel) const
{
    Quaternion global = GetOrientation();
    if (GetParent()) {
        GetParent()->LocalToGlobal(global);
    }
    const Vector3 direction = ImageOfAxis(global, coneAxis);
    if (IsFinite(direction)) {
        channel.SetDirection(direction);
    }
}

bool Snd3D::SetFXEnvReverbSourceProperties(const FXEnvReverbSourceProperties* properties)
{
    if (!theKernel || !theKernel->CanSetEnvReverbSource()) {
        return false;
    }
    OwnFXList().AddFX(SndFXEnvReverbSource, properties, sizeof *properties, defaultEnvReverbQuality);
    SndChannel* channel = GetSndChannel();
    return !channel || channel->SetFXEnvReverbSourceProperties(properties);
}

bool Snd3D::GetFXEnvReverbSourceProperties(FXEnvReverbSourceProperties* properties)
{
    return GetEffect(SndFXEnvReverbSource, properties, &SndChannel::GetFXEnvReverbSourceProperties);
}

} // namespace Quon
