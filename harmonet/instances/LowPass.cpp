// The low-pass of a sound, of a group and of music.

#include "harmonet/instances/Music.h"
#include "harmonet/instances/SndPolyline.h"
#include "harmonet/instances/Sound.h"
#include "harmonet/kernel/SndKernel.h"
#include "harmonet/output/SndChannel.h"

#include <algorithm>
#include <cmath>

namespace Quon
{

float SndBase::GetOutputLowPass() const
{
    const Sound* group = GetParentSound();
    const Music* music = GetParentMusic();
    const float ofParent = group ? group->GetLowPass() : music ? music->GetLowPass() : 1.0F;
    return (theKernel ? theKernel->GetLowPass() : 1.0F) * ofParent * GetLowPass();
}

void SndBase::SetLowPass(float gainHF)
{
    if (gainHF >= 0.0F && gainHF <= 1.0F) {
        SetExtra(&Extras::lowPass, gainHF);
    }
    for (SndChannel* channel : {sndChannel, GetFadeOutChannel()}) {
        if (channel) {
            channel->SetLowPass(GetOutputLowPass());
        }
    }
}

void Sound::SetSoundLowPass(int id, float gainHF)
{
    SndBase* sound = FindSound(id);
    if (!sound || std::isnan(gainHF)) {
        return;
    }
    const float clamped = std::clamp(gainHF, 0.0F, 1.0F);
    if (sound->IsPolyline()) {
        static_cast<SndPolyline*>(sound)->SetLowPass(clamped);
    }
    else {
        sound->SetLowPass(clamped);
    }
}

float Sound::GetSoundLowPass(int id) const
{
    const SndBase* sound = FindSound(id);
    return sound ? sound->GetLowPass() : 0.0F;
}

void Sound::SetLowPass(float gainHF)
{
    if (std::isnan(gainHF)) {
        return;
    }
    lowPass = std::clamp(gainHF, 0.0F, 1.0F);
    if (theKernel) {
        theKernel->RefreshLowPass(this);
    }
}

void Music::SetLowPass(float gainHF)
{
    if (std::isnan(gainHF)) {
        return;
    }
    lowPass = std::clamp(gainHF, 0.0F, 1.0F);
    if (SndBase* instance = FindLive()) {
        instance->SetLowPass(SndBase::applyAgain);
    }
}

} // namespace Quon
