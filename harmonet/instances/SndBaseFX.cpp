// The effects of a sound: one setter and one getter for each kind.

#include "harmonet/instances/OrNothing.h"
#include "harmonet/instances/SndBase.h"
#include "harmonet/output/SndChannel.h"

namespace Quon
{

bool SndBase::AddEffect(SndFX effect, const void* record, unsigned long size, long quality)
{
    if (IsPlaying()) {
        return false;
    }
    return OrNothing([&] {
        OwnFXList().AddFX(effect, record, size, quality);
        ClearFlags(FlagChgFrequency);
        SetNewFrequency(0);
        return true;
    });
}

bool SndBase::SetFXEnvReverbListenerProperties(const FXEnvReverb* record, long quality)
{
    return AddEffect(SndFXEnvReverb, record, sizeof(std::int32_t) + sizeof *record, quality);
}

bool SndBase::GetFXEnvReverbListenerProperties(FXEnvReverb* record)
{
    return GetEffect(SndFXEnvReverb, record, &SndChannel::GetFXEnvReverbListenerProperties);
}

bool SndBase::SetFXChorus(const FXChorus* record)
{
    return AddEffect(SndFXChorus, record, sizeof *record, defaultEnvReverbQuality);
}

bool SndBase::GetFXChorus(FXChorus* record)
{
    return GetEffect(SndFXChorus, record, &SndChannel::GetFXChorus);
}

bool SndBase::SetFXFlanger(const FXFlanger* record)
{
    return AddEffect(SndFXFlanger, record, sizeof *record, defaultEnvReverbQuality);
}

bool SndBase::GetFXFlanger(FXFlanger* record)
{
    return GetEffect(SndFXFlanger, record, &SndChannel::GetFXFlanger);
}

bool SndBase::SetFXEcho(const FXEcho* record)
{
    return AddEffect(SndFXEcho, record, sizeof *record, defaultEnvReverbQuality);
}

bool SndBase::GetFXEcho(FXEcho* record)
{
    return GetEffect(SndFXEcho, record, &SndChannel::GetFXEcho);
}

bool SndBase::SetFXDistortion(const FXDistortion* record)
{
    return AddEffect(SndFXDistortion, record, sizeof *record, defaultEnvReverbQuality);
}

bool SndBase::GetFXDistortion(FXDistortion* record)
{
    return GetEffect(SndFXDistortion, record, &SndChannel::GetFXDistortion);
}

bool SndBase::SetFXCompressor(const FXCompressor* record)
{
    return AddEffect(SndFXCompressor, record, sizeof *record, defaultEnvReverbQuality);
}

bool SndBase::GetFXCompressor(FXCompressor* record)
{
    return GetEffect(SndFXCompressor, record, &SndChannel::GetFXCompressor);
}

bool SndBase::SetFXParamEq(const FXParamEq* record)
{
    return AddEffect(SndFXParamEq, record, sizeof *record, defaultEnvReverbQuality);
}

bool SndBase::GetFXParamEq(FXParamEq* record)
{
    return GetEffect(SndFXParamEq, record, &SndChannel::GetFXParamEq);
}

bool SndBase::SetFXGargle(const FXGargle* record)
{
    return AddEffect(SndFXGargle, record, sizeof *record, defaultEnvReverbQuality);
}

bool SndBase::GetFXGargle(FXGargle* record)
{
    return GetEffect(SndFXGargle, record, &SndChannel::GetFXGargle);
}

bool SndBase::SetFXWavesReverb(const FXWavesReverb* record)
{
    return AddEffect(SndFXWavesReverb, record, sizeof *record, defaultEnvReverbQuality);
}

bool SndBase::GetFXWavesReverb(FXWavesReverb* record)
{
    return GetEffect(SndFXWavesReverb, record, &SndChannel::GetFXWavesReverb);
}

bool SndBase::SetFXEnvReverbSourceProperties(const FXEnvReverbSourceProperties*)
{
    return false;
}

bool SndBase::GetFXEnvReverbSourceProperties(FXEnvReverbSourceProperties*)
{
    return false;
}

SndFXList& SndBase::OwnFXList()
{
    SndFXList& fxList = UseExtras().fxList;
    if (HasAnyFlag(FlagSharedFXList)) {
        fxList = fxList.Duplicate();
        ClearFlags(FlagSharedFXList);
    }
    return fxList;
}

void SndBase::SetThisFXList(const SndFXList& newList)
{
    if (GetThisFXList().GetBlock() == newList.GetBlock()) {
        return;
    }
    const bool isOwner = !HasAnyFlag(FlagSharedFXList);
    if (!OrNothing([this] { return &UseExtras(); })) {
        if (isOwner) {
            SndFXList(newList).Clear();
        }
        throw std::bad_alloc();
    }
    if (isOwner) {
        extras->fxList.Clear();
    }
    extras->fxList = newList;
}

void SndBase::SetCopyFXList(const SndFXList& newList)
{
    SetThisFXList(newList.Duplicate());
}

} // namespace Quon
