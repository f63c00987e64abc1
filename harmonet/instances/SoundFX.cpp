// The effects of a group's sounds: each call finds the sound and forwards the record.

#include "harmonet/instances/SndBase.h"
#include "harmonet/instances/Sound.h"

namespace Quon
{

bool Sound::SetFXEnvReverbListenerProperties(int id, const FXEnvReverb* record, long quality)
{
    SndBase* sound = FindSound(id);
    return sound && sound->SetFXEnvReverbListenerProperties(record, quality);
}

bool Sound::GetFXEnvReverbListenerProperties(int id, FXEnvReverb* record)
{
    SndBase* sound = FindSound(id);
    return sound && sound->GetFXEnvReverbListenerProperties(record);
}

bool Sound::SetFXEnvReverbSourceProperties(int id, const FXEnvReverbSourceProperties* record)
{
    SndBase* sound = FindSound(id);
    return sound && sound->SetFXEnvReverbSourceProperties(record);
}

bool Sound::GetFXEnvReverbSourceProperties(int id, FXEnvReverbSourceProperties* record)
{
    SndBase* sound = FindSound(id);
    return sound && sound->GetFXEnvReverbSourceProperties(record);
}

bool Sound::SetFXChorus(int id, const FXChorus* record)
{
    SndBase* sound = FindSound(id);
    return sound && sound->SetFXChorus(record);
}

bool Sound::GetFXChorus(int id, FXChorus* record)
{
    SndBase* sound = FindSound(id);
    return sound && sound->GetFXChorus(record);
}

bool Sound::SetFXFlanger(int id, const FXFlanger* record)
{
    SndBase* sound = FindSound(id);
    return sound && sound->SetFXFlanger(record);
}

bool Sound::GetFXFlanger(int id, FXFlanger* record)
{
    SndBase* sound = FindSound(id);
    return sound && sound->GetFXFlanger(record);
}

bool Sound::SetFXEcho(int id, const FXEcho* record)
{
    SndBase* sound = FindSound(id);
    return sound && sound->SetFXEcho(record);
}

bool Sound::GetFXEcho(int id, FXEcho* record)
{
    SndBase* sound = FindSound(id);
    return sound && sound->GetFXEcho(record);
}

bool Sound::SetFXDistortion(int id, const FXDistortion* record)
{
    SndBase* sound = FindSound(id);
    return sound && sound->SetFXDistortion(record);
}

bool Sound::GetFXDistortion(int id, FXDistortion* record)
{
    SndBase* sound = FindSound(id);
    return sound && sound->GetFXDistortion(record);
}

bool Sound::SetFXCompressor(int id, const FXCompressor* record)
{
    SndBase* sound = FindSound(id);
    return sound && sound->SetFXCompressor(record);
}

bool Sound::GetFXCompressor(int id, FXCompressor* record)
{
    SndBase* sound = FindSound(id);
    return sound && sound->GetFXCompressor(record);
}

bool Sound::SetFXParamEq(int id, const FXParamEq* record)
{
    SndBase* sound = FindSound(id);
    return sound && sound->SetFXParamEq(record);
}

bool Sound::GetFXParamEq(int id, FXParamEq* record)
{
    SndBase* sound = FindSound(id);
    return sound && sound->GetFXParamEq(record);
}

bool Sound::SetFXGargle(int id, const FXGargle* record)
{
    SndBase* sound = FindSound(id);
    return sound && sound->SetFXGargle(record);
}

bool Sound::GetFXGargle(int id, FXGargle* record)
{
    SndBase* sound = FindSound(id);
    return sound && sound->GetFXGargle(record);
}

bool Sound::SetFXWavesReverb(int id, const FXWavesReverb* record)
{
    SndBase* sound = FindSound(id);
    return sound && sound->SetFXWavesReverb(record);
}

bool Sound::GetFXWavesReverb(int id, FXWavesReverb* record)
{
    SndBase* sound = FindSound(id);
    return sound && sound->GetFXWavesReverb(record);
}

} // namespace Quon
