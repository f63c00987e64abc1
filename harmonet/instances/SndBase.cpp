#include "harmonet/instances/SndBase.h"

#include "harmonet/definitions/DefinitionState.h"
#include "harmonet/engine/Vector.h"
#include "harmonet/files/SndFile.h"
#include "harmonet/instances/OrNothing.h"
#include "harmonet/instances/SndBaseRow.h"
#include "harmonet/instances/SndPolyline.h"
#include "harmonet/instances/Sound.h"
#include "harmonet/kernel/SndKernel.h"
#include "harmonet/output/SndChannel.h"
#include "harmonet/output/SndDriver.h"
#include "harmonet/voices/Motion.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace Quon
{

bool SndBase::useMultiplier = true;
int SndBase::lastSoundID = 0;

int SndBase::NextSoundID()
{
    if (!theKernel) {
        return 0;
    }
    constexpr int maxID = std::numeric_limits<int>::max();
    static bool anyReused = false;
    do {
        anyReused = anyReused || lastSoundID == maxID;
        lastSoundID = lastSoundID % maxID + 1;
    } while (anyReused && theKernel->FindSound(lastSoundID));
    return lastSoundID;
}

SndBase::SndBase(bool music)
    : rowNumber(SoundRows::Take(*this))
    , soundID(NextSoundID())
    , sndFlags(&SoundRows::At(rowNumber).Flags())
{
    if (music) {
        AddFlags(FlagMusic);
    }
}

// The delegation makes the destructor return the row if memory for the extras runs out.
SndBase::SndBase(const SndBase& other)
    : SndBase(false)
{
    CopyExtras(other);
    SndBase::SetDelay(other.GetDelay());
    fileName = other.fileName;
    substName = other.substName;
    definitionName = other.definitionName;
    soundLength = other.soundLength;
    gain = other.gain;
    Row().Flags() = other.Row().Flags();
    Row().Priority() = other.Row().Priority();
}

SndBase& SndBase::operator=(const SndBase& other)
{
    const SoundRow from = other.Row();
    const SoundRow row = Row();
    if (theKernel) {
        theKernel->ForgetOrder(row);
    }
    row.Flags() = from.Flags();
    row.Priority() = from.Priority();
    row.DistSqr() = from.DistSqr();
    row.Multiplier() = from.Multiplier();
    row.StateTimeMs() = from.StateTimeMs();
    soundID = other.soundID;
    parent = other.parent;
    SetFileName(other.fileName);
    SetSubstName(other.substName);
    definitionName = other.definitionName;
    SetSndFile(other.GetSndFile());
    SetStartSample(other.GetExtras().startSample);
    SetExtra(&Extras::startOffsetMs, other.GetExtras().startOffsetMs);
    SetSoundLength(other.soundLength);
    gain = other.gain;
    SndBase::SetDelay(other.GetDelay());
    CopyExtras(other);
    if (extras || other.extras) {
        UseExtras().fxList = other.GetThisFXList();
    }
    sndChannel = other.sndChannel;
    SetFadeOutChannel(other.GetFadeOutChannel());
    return *this;
}

const SndBase::Extras& SndBase::GetExtras() const
{
    static constinit const Extras defaults;
    return extras ? *extras : defaults;
}

SndBase::Extras& SndBase::UseExtras()
{
    if (!extras) {
        extras = std::make_unique<Extras>();
    }
    return *extras;
}

// The settings, but no state of the other sound.
void SndBase::CopyExtras(const SndBase& other)
{
    SetExtra(&Extras::loopStart, other.GetExtras().loopStart);
    SetExtra(&Extras::loopEnd, other.GetExtras().loopEnd);
    SetExtra(&Extras::newFrequency, other.GetExtras().newFrequency);
    SetExtra(&Extras::frequencyFactor, other.GetExtras().frequencyFactor);
    SetExtra(&Extras::fadeDuration, other.GetFadeDuration());
    SetExtra(&Extras::lowPass, other.GetLowPass());
}

SndBase::~SndBase()
{
    Done();
    SoundRows::GiveBack(rowNumber);
    if (!theKernel) {
        SoundRows::Trim();
    }
}

void SndBase::Done()
{
    if (ended) {
        return;
    }
    ended = true;
    inNotification = true;
    LeaveLimits();
    NotifyEnd();
    if (theKernel) {
        if (sndChannel) {
            sndChannel->Stop();
            sndChannel = nullptr;
        }
        if (GetFadeOutChannel()) {
            ReleaseFadeOutChannel();
        }
        theKernel->RemoveSound(this);
    }
    SetIsPlaying(false);
    SndFile* file = sndFile;
    TakeFile(nullptr);
    CloseAndDelete(file);
    if (extras) {
        CloseAndDelete(std::exchange(extras->fadingOut.file, nullptr));
        if (!HasAnyFlag(FlagSharedFXList)) {
            extras->fxList.Clear();
        }
    }
}

// It does not count any more, so that an observer of its end can start another.
void SndBase::LeaveLimits()
{
    if (DefinitionState* definition = GetLimitedBy()) {
        definition->Leave(soundID);
    }
}

void SndBase::NotifyEnd()
{
    if (IsMusic()) {
        NotifyMusicEnd();
    }
    Sound* group = GetParentSound();
    if (!group || HasAnyFlag(FlagPolylineSource)) {
        return;
    }
    if (!IsPlaying()) {
        // An observer always sees a begin before an abort.
        group->OnSoundBegin(soundID, fileName);
        group->OnSoundAbort(soundID, fileName, static_cast<int>(LessStartOffset(soundLength)));
        return;
    }
    const std::uint32_t remaining = CalcRemainAtEnd();
    if (remaining > 0) {
        group->OnSoundAbort(soundID, fileName, static_cast<int>(remaining));
    }
    else {
        group->OnSoundEnd(soundID, fileName);
    }
}

std::uint32_t SndBase::CalcRemainAtEnd() const
{
    if (IsLooping()) {
        return static_cast<std::uint32_t>(unknownLength);
    }
    std::uint32_t remaining = 0;
    if (sndChannel) {
        remaining = static_cast<std::uint32_t>(sndChannel->GetRemainLength());
    }
    else if (sndFile) {
        remaining = CalcFileRemain();
    }
    return remaining + CalcQueueLength();
}

// Milliseconds of the files after the current one.
std::uint32_t SndBase::CalcQueueLength() const
{
    std::uint32_t length = 0;
    if (!sndFile) {
        return length;
    }
    for (const SndFile* file = sndFile->GetNext(); file; file = file->GetNext()) {
        length += static_cast<std::uint32_t>(file->GetSoundLength());
    }
    return length;
}

// Deletes a channel's file with its queue; blocks of memory are reported to the group.
void SndBase::CloseAndDelete(SndFile* file)
{
    if (!file) {
        return;
    }
    const auto id = static_cast<unsigned int>(soundID);
    file->DeleteQueue(id, GetParentSound());
    file->CloseFile(id, GetParentSound());
    delete file;
}

void SndBase::ReleaseFadeOutChannel()
{
    SndChannel* channel = std::exchange(extras->fadeOutChannel, nullptr);
    channel->Stop();
    SndFile* file = channel->GetSndFile();
    if (!file) {
        return;
    }
    channel->SetSndFile(nullptr);
    NotificationScope notification(*this);
    CloseAndDelete(file);
}

void SndBase::Play(SndFile* file)
{
    TakeFile(file);
    if (!IsPlaying()) {
        if (const int samples = TakeStartSamples(); samples > 0) {
            SkipSamples(samples);
        }
        SetIsPlaying(true);
        if (IsMusic()) {
            NotifyMusicBegin();
        }
        if (Sound* group = GetParentSound()) {
            NotificationScope notification(*this);
            group->OnSoundBegin(soundID, fileName);
        }
    }
    SetStateTime(0);
}

bool SndBase::Emulate()
{
    if (sndChannel) {
        sndChannel->Stop();
        sndChannel = nullptr;
    }
    if (GetFadeOutChannel()) {
        ReleaseFadeOutChannel();
    }
    SetExtra(&Extras::fadeInPassed, 0U);
    Row().SetMark(RowReturns, false);
    SetStateTime(0);
    return IsPolyline() || sndFile;
}

void SndBase::SetPaused(bool on)
{
    SetFlags(FlagPaused, on);
    if (theKernel) {
        theKernel->NotePauses();
    }
}

bool SndBase::IsPaused() const
{
    const Sound* group = GetParentSound();
    return HasAnyFlag(FlagPaused) || (group && group->IsPaused()) || (theKernel && theKernel->IsAllPaused());
}

bool SndBase::HoldsChannel() const
{
    return sndChannel || (Row().List() == ListID::Paused && Row().HasMark(RowWasHeard) && sndFile);
}

// Takes the sound off the driver, which resets the files to the playback position, and stores the progress of
// its fade-in.
void SndBase::StopChannel()
{
    if (sndChannel) {
        const auto longest = static_cast<std::uint32_t>(std::max(GetFadeDuration(), 0));
        const std::uint32_t passed = GetExtras().fadeInPassed + std::min(Row().StateTimeMs(), longest);
        SetExtra(&Extras::fadeInPassed, std::min(passed, longest));
        std::exchange(sndChannel, nullptr)->Stop();
    }
}

// The same, also for the channel that fades out.
void SndBase::PauseOutput()
{
    StopChannel();
    if (GetFadeOutChannel()) {
        FadeOutState& fade = extras->fadingOut;
        SndChannel* channel = std::exchange(extras->fadeOutChannel, nullptr);
        channel->Stop();
        fade.file = channel->GetSndFile();
        fade.since = theKernel->GetClockMs() - fade.since;
        channel->SetSndFile(nullptr);
    }
}

bool SndBase::FadeOut(int ms)
{
    if (!sndChannel) {
        AddFlags(FlagFadeOut);
        LeaveLimits();
        delete this;
        return false;
    }
    Extras& used = UseExtras();
    AddFlags(FlagFadeOut);
    LeaveLimits();
    if (GetFadeOutChannel()) {
        ReleaseFadeOutChannel();
    }
    // Pass the file to the fading channel before deleting the queue, so that a handler of a freed block finds
    // no queue to append to.
    SndChannel* channel = sndChannel;
    used.fadeOutChannel = channel;
    sndChannel = nullptr;
    used.fadeInPassed = 0;
    used.fadingOut = {
        nullptr, GetChannelFlags(), GetOutputGain(), ms, theKernel ? theKernel->GetClockMs() : 0};
    TakeFile(nullptr);
    {
        NotificationScope notification(*this);
        channel->Lock();
        if (SndFile* file = channel->GetSndFile()) {
            file->DeleteQueue(static_cast<unsigned int>(soundID), GetParentSound());
        }
        channel->Unlock();
    }
    channel->FadeOut(ms);
    return true;
}

float SndBase::GetOutputGain() const
{
    if (!theKernel) {
        return gain;
    }
    if (IsMusic()) {
        return CalcMusicGain();
    }
    const float groupGain = GetParentSound() ? GetParentSound()->GetGain() : 1.0F;
    return groupGain * (Is3D() ? theKernel->GetMainGain3D() : theKernel->GetMainGain2D()) * gain;
}

float SndBase::CalcLevel(const Vector3*) const
{
    return GetOutputGain();
}

void SndBase::SetGain(float newGain)
{
    if (newGain >= 0.0F && newGain <= 1.0F) {
        gain = newGain;
    }
    if (extras && !sndChannel && !sndFile) {
        extras->fadingOut.gain = GetOutputGain();
    }
    if (SndChannel* channel = sndChannel ? sndChannel : GetFadeOutChannel()) {
        channel->SetGain(GetOutputGain());
    }
}

bool SndBase::SetFrequency(unsigned long hz)
{
    if (GetThisFXList().GetNumEffects() > 0 || (IsPlaying() && !IsChgFrequency())) {
        return false;
    }
    // The extras come first: if there is no memory for them, the channel must keep its rate.
    if (!OrNothing([this] { return &UseExtras(); }) || (sndChannel && !sndChannel->SetFrequency(hz))) {
        return false;
    }
    SetNewFrequency(hz);
    AddFlags(FlagChgFrequency);
    return true;
}

unsigned long SndBase::GetFrequency() const
{
    if (const unsigned long hz = sndChannel ? sndChannel->GetFrequency() : 0) {
        return hz;
    }
    if (const unsigned long hz = GetNewFrequency()) {
        return hz;
    }
    return sndFile ? static_cast<unsigned long>(sndFile->GetSampleFrequency()) : 0;
}

unsigned long SndBase::GetRemainLength() const
{
    if (IsLooping() && (!HasAnyFlag(FlagFadeOut) || GetFadeOutChannel() || GetExtras().fadingOut.file)) {
        return unknownLength;
    }
    if (sndChannel) {
        return static_cast<std::uint32_t>(sndChannel->GetRemainLength() + CalcQueueLength());
    }
    if (GetFadeOutChannel()) {
        return extras->fadeOutChannel->GetRemainLength();
    }
    if (SndFile* fading = GetExtras().fadingOut.file; fading && !sndFile) {
        return fading->GetRemainLength();
    }
    if (HasAnyFlag(FlagFadeOut)) {
        return static_cast<std::uint32_t>(GetFadeDuration());
    }
    if (sndFile) {
        return LessStartOffset(CalcFileRemain() + CalcQueueLength());
    }
    return LessStartOffset(soundLength);
}

unsigned long SndBase::GetCurrentLength() const
{
    unsigned long remaining = soundLength;
    if (sndChannel) {
        remaining = sndChannel->GetRemainLength();
    }
    else if (GetFadeOutChannel()) {
        remaining = extras->fadeOutChannel->GetRemainLength();
    }
    else if (SndFile* fading = GetExtras().fadingOut.file; fading && !sndFile) {
        remaining = fading->GetRemainLength();
    }
    else if (sndFile) {
        remaining = CalcFileRemain();
    }
    const std::uint32_t sum = LessStartOffset(static_cast<std::uint32_t>(remaining + CalcQueueLength()));
    return sum < soundLength ? soundLength - sum : 0;
}

// `ms` minus the start offset for a sound that has not begun.
std::uint32_t SndBase::LessStartOffset(std::uint32_t ms) const
{
    if (IsPlaying() || ms == unknownLength) {
        return ms;
    }
    return ms - std::min(ms, GetExtras().startOffsetMs);
}

bool SndBase::SeekTo(unsigned long ms)
{
    if (!theKernel || !sndFile) {
        return false;
    }
    const std::uint64_t sample =
        std::uint64_t{ms} * static_cast<unsigned int>(sndFile->GetSampleFrequency()) / 1000;
    if (sample >= static_cast<std::uint64_t>(std::max(sndFile->GetSoundSamples(), 0))) {
        return false;
    }
    if (!IsPlaying()) {
        SetStartOffset(ms);
        return true;
    }
    const auto place = static_cast<int>(sample);
    return theKernel->MoveTo(*this, IsLooping() ? sndFile->WrapToLoop(place) : place);
}

unsigned int SndBase::GetChannelFlags() const
{
    unsigned int flags = 0;
    if (Is3D()) {
        flags |= ChanPositional;
        if (static_cast<const Snd3D*>(this)->GetCutout()) {
            flags |= ChanCutOut;
        }
        if (IsDisableMicFX()) {
            flags |= ChanDisableMicFX;
        }
    }
    if (IsLooping()) {
        flags |= ChanLooping;
    }
    if (IsChgFrequency()) {
        flags |= ChanChgFrequency;
    }
    return flags;
}

bool SndBase::IsInNotification() const
{
    return inNotification ||
        (IsPolyline() && static_cast<const SndPolyline*>(this)->IsSourceInNotification());
}

bool SndBase::operator<(const SndBase& other) const
{
    return GetCompareKey(Row()) < GetCompareKey(other.Row());
}

void SndBase::SetCompareUsingMultiplier(bool use)
{
    if (theKernel && use != useMultiplier) {
        theKernel->ForgetOrder();
    }
    useMultiplier = use;
}

} // namespace Quon
