// Settings and queries of a group's sounds.

#include "harmonet/engine/Messages.h"
#include "harmonet/instances/SndPolyline.h"
#include "harmonet/instances/Sound.h"
#include "harmonet/kernel/SndKernel.h"
#include "harmonet/output/SndChannel.h"

#include <algorithm>
#include <cmath>

namespace Quon
{

SndBase* Sound::FindSound(int id) const
{
    return theKernel ? theKernel->FindSound(id) : nullptr;
}

Snd3D* Sound::Find3D(int id) const
{
    SndBase* sound = FindSound(id);
    return sound && sound->Is3D() ? static_cast<Snd3D*>(sound) : nullptr;
}

Snd3D* Sound::FindPlaced3D(int id) const
{
    Snd3D* sound = Find3D(id);
    return sound && !sound->IsPolyline() ? sound : nullptr;
}

void Sound::SetGain(float newGain)
{
    if (std::isnan(newGain)) {
        return;
    }
    gain = std::clamp(newGain, 0.0F, 1.0F);
    if (theKernel) {
        theKernel->RefreshGains(this);
    }
}

void Sound::SetSoundGain(int id, float newGain)
{
    SndBase* sound = FindSound(id);
    if (!sound || std::isnan(newGain)) {
        return;
    }
    const float clamped = std::clamp(newGain, 0.0F, 1.0F);
    if (sound->IsPolyline()) {
        static_cast<SndPolyline*>(sound)->SetGain(clamped);
    }
    else {
        sound->SetGain(clamped);
    }
}

float Sound::GetSoundGain(int id) const
{
    const SndBase* sound = FindSound(id);
    return sound ? sound->GetGain() : 0.0F;
}

void Sound::SetSoundPriority(int id, int priority)
{
    if (SndBase* sound = FindSound(id)) {
        sound->SetPriority(priority);
    }
}

int Sound::GetSoundPriority(int id, int)
{
    const SndBase* sound = FindSound(id);
    return sound ? sound->GetPriority() : 0;
}

void Sound::SetSoundDelay(int id, int ms)
{
    SndBase* sound = FindSound(id);
    if (sound && !sound->IsPlaying()) {
        sound->SetDelay(ms);
    }
}

void Sound::SetSoundStartOffset(int id, unsigned long ms)
{
    SndBase* sound = FindSound(id);
    if (sound && !sound->IsPlaying() && !sound->IsPolyline()) {
        sound->SetStartOffset(ms);
    }
}

void Sound::SetSoundLoopRegion(int id, int start, int end)
{
    SndBase* sound = FindSound(id);
    if (sound && !sound->IsPlaying() && !sound->IsPolyline()) {
        sound->SetLoopRegion(start, end);
    }
}

void Sound::SetSoundFadeIn(int id, int ms)
{
    SndBase* sound = FindSound(id);
    if (sound && !sound->IsPlaying()) {
        sound->SetFadeIn(ms);
    }
}

bool Sound::SetFrequency(int id, unsigned long hz)
{
    SndBase* sound = FindSound(id);
    if (!sound) {
        return false;
    }
    const bool isSet = IsRateAccepted(hz) && sound->SetFrequency(hz);
    if (!isSet) {
        Report(MessageLevel::Error, "sound ", id, " cannot be set to ", hz, " Hz: the range is ", minRateHz,
            " to ", maxRateHz,
            ", a sound with effects has a fixed rate, and a playing one needs StartChgFrequency");
    }
    return isSet;
}

unsigned long Sound::GetFrequency(int id)
{
    const SndBase* sound = FindSound(id);
    return sound ? sound->GetFrequency() : 0;
}

unsigned long Sound::GetSoundLength(int id)
{
    const SndBase* sound = FindSound(id);
    return sound ? sound->GetSoundLength() : 0;
}

unsigned long Sound::GetRemainLength(int id)
{
    const SndBase* sound = FindSound(id);
    return sound ? sound->GetRemainLength() : 0;
}

unsigned long Sound::GetCurrentLength(int id)
{
    const SndBase* sound = FindSound(id);
    return sound ? sound->GetCurrentLength() : 0;
}

void Sound::SetSoundMinMaxDistance(int id, float minDistance, float maxDistance, bool cutout)
{
    if (Snd3D* sound = Find3D(id)) {
        sound->SetMinMaxDistance(minDistance, maxDistance, cutout);
    }
}

void Sound::SetSoundCone(int id, float inner, float outer, float coneGain)
{
    if (Snd3D* sound = FindPlaced3D(id)) {
        sound->SetCone(inner, outer, coneGain);
    }
}

void Sound::SetSoundDoppler(int id, float factor)
{
    if (Snd3D* sound = FindPlaced3D(id)) {
        sound->SetDoppler(factor);
    }
}

float Sound::GetSoundDoppler(int id) const
{
    const Snd3D* sound = FindPlaced3D(id);
    return sound ? sound->GetDoppler() : 0.0F;
}

void Sound::SetSoundPosition(int id, const Vector3& position)
{
    if (Snd3D* sound = FindPlaced3D(id)) {
        sound->SetPosition(position);
    }
}

Vector3 Sound::GetSoundPosition(int id)
{
    const Snd3D* sound = FindPlaced3D(id);
    return sound ? sound->GetPosition() : Vector3();
}

void Sound::SetSoundOrientation(int id, const Quaternion& orientation)
{
    if (Snd3D* sound = FindPlaced3D(id)) {
        sound->SetOrientation(orientation);
    }
}

Quaternion Sound::GetSoundOrientation(int id)
{
    const Snd3D* sound = FindPlaced3D(id);
    return sound ? sound->GetOrientation() : Quaternion();
}

void Sound::BindSoundAxisToDirection(int id, int axis)
{
    if (axis == Snd3D::defaultAxis) {
        return;
    }
    if (Snd3D* sound = Find3D(id)) {
        sound->BindAxisToDirection(axis);
    }
}

} // namespace Quon
