#include "harmonet/instances/Music.h"

#include "harmonet/definitions/SoundResource.h"
#include "harmonet/engine/Messages.h"
#include "harmonet/instances/MusicNotices.h"
#include "harmonet/instances/OrNothing.h"
#include "harmonet/instances/SndBase.h"
#include "harmonet/instances/TakenResource.h"
#include "harmonet/kernel/SndKernel.h"

#include <algorithm>
#include <cmath>

namespace Quon
{

namespace
{

} // namespace

float SndBase::CalcMusicGain() const
{
    const Music* music = GetParentMusic();
    return (music ? music->GetGain() : 1.0F) * theKernel->GetMainGainMusic() * gain;
}

void SndBase::NotifyMusicBegin()
{
    const Music* music = GetParentMusic();
    if (music && music->notices) {
        music->notices->Post(MusicNotice::Begin, fileName, 0);
    }
}

// Only for a piece that has begun.
void SndBase::NotifyMusicEnd()
{
    const Music* music = GetParentMusic();
    if (!music || !music->notices || !IsPlaying()) {
        return;
    }
    const std::uint32_t remaining = hasRunOut || HasAnyFlag(FlagFadeOut) ? 0 : CalcRemainAtEnd();
    music->notices->Post(
        remaining > 0 ? MusicNotice::Abort : MusicNotice::End, fileName, static_cast<int>(remaining));
}

Music::Music() = default;

Music::Music(const Music& other)
    : soundID(other.soundID)
    , gain(other.gain)
    , paused(other.paused)
{
}

Music::~Music()
{
    closing = true;
    Stop();
    // A delivery may already be running, so the pending notifications would come too late.
    if (notices) {
        notices->Deliver();
    }
}

void Music::AddObserver(MusicObserver* observer)
{
    // An observer added in its OnMusicShutDown() would keep a dangling pointer.
    if (closing || !observer) {
        return;
    }
    if (!notices) {
        notices = std::make_unique<MusicNotices>(*this);
    }
    notices->AddObserver(observer);
}

void Music::RemoveObserver(MusicObserver* observer)
{
    if (notices && observer) {
        notices->RemoveObserver(observer);
    }
}

Music& Music::operator=(const Music& other)
{
    // The old piece must not read its gain from a handle that may be destroyed first.
    SndBase* left = soundID != other.soundID ? FindLive() : nullptr;
    if (left && left->GetParentMusic() == this) {
        left->SetParentMusic(nullptr);
    }
    // Nor must it stay paused, since it could not be resumed.
    if (left && left->GetParentMusic() == nullptr) {
        left->SetPaused(false);
    }
    soundID = other.soundID;
    gain = other.gain;
    lowPass = other.lowPass;
    paused = other.paused;
    return *this;
}

SndBase* Music::FindLive() const
{
    return soundID > 0 && theKernel ? theKernel->FindSound(soundID) : nullptr;
}

void Music::Stop()
{
    const SndBase::MusicHold hold;
    delete FindLive();
}

bool Music::Play(const PString& name, bool loop)
{
    return FadeIn(name, nullptr, 0, loop);
}

bool Music::Play(const PString& name, const ResourceDatabase* db, bool loop)
{
    return FadeIn(name, db, 0, loop);
}

bool Music::FadeIn(const PString& name, int ms, bool loop)
{
    return FadeIn(name, nullptr, ms, loop);
}

bool Music::FadeIn(const PString& name, const ResourceDatabase* db, int ms, bool loop)
{
    return Play(name, db, Settings{.loop = loop, .fadeMs = ms});
}

bool Music::Play(const PString& name, const ResourceDatabase* db, const Settings& settings)
{
    const SndBase::MusicHold hold;
    if (!theKernel || !theKernel->AcceptsSounds() || closing) {
        Report(MessageLevel::Error, "music '", name, "' is not started: the sound system is not running");
        return false;
    }
    SndBase* instance = FindLive();
    if (instance && instance->HoldsChannel()) {
        Report(MessageLevel::Error, "music '", name, "' is not started: it is already playing");
        return false;
    }
    const bool isNew = !instance;
    if (isNew) {
        instance = OrNothing([] { return new SndBase(true); });
    }
    if (!instance) {
        return false;
    }
    const int id = instance->GetSoundID();
    try {
        return StartPiece(*instance, isNew, name, db, settings);
    }
    catch (const std::bad_alloc&) {
        // End it, whether it is in the table or not yet.
        const bool isAdopted = soundID == id;
        if (!isAdopted || (theKernel && theKernel->FindSound(id) == instance)) {
            delete instance;
        }
        if (isAdopted) {
            soundID = 0;
        }
        return false;
    }
}

bool Music::StartPiece(
    SndBase& instance, bool isNew, const PString& name, const ResourceDatabase* db, const Settings& settings)
{
    if (!isNew) {
        GiveWay(instance);
        theKernel->GiveUpFile(instance);
    }
    instance.ResetFlags(FlagMusic | FlagDistLTMax);
    if (settings.fadeMs > 0) {
        instance.SetFadeIn(settings.fadeMs);
    }
    if (settings.loop) {
        instance.SetLooping();
    }
    instance.SetStartOffset(settings.positionMs);
    return db ? StartResource(instance, isNew, name, *db, settings)
              : StartFile(instance, isNew, name, settings);
}

// Reports to the handle that started the instance's previous piece that it is replaced.
void Music::GiveWay(const SndBase& instance)
{
    const Music* starter = instance.GetParentMusic();
    if (starter && starter->notices && instance.IsPlaying()) {
        starter->notices->Post(MusicNotice::GivesWay, instance.GetFileName(), 0);
    }
}

bool Music::StartFile(SndBase& instance, bool isNew, const PString& name, const Settings& settings)
{
    instance.SetLoopRegion(settings.loopStart, settings.loopEnd);
    instance.SetFileName(name);
    instance.SetDefinitionName(PString());
    Adopt(instance, isNew);
    instance.SetGain(SndBase::applyAgain);
    return StartOrGiveUp(instance);
}

bool Music::StartResource(
    SndBase& instance, bool isNew, const PString& name, const ResourceDatabase& db, const Settings& settings)
{
    const auto exists = [&instance, id = instance.GetSoundID()] {
        return theKernel && theKernel->FindSound(id) == &instance;
    };
    TakenResource resource(name, db, MusicLookup);
    // An observer of the load may have ended the piece, or used the handle for another.
    if (!theKernel || FindLive() != (isNew ? nullptr : &instance)) {
        if (isNew || exists()) {
            delete &instance;
        }
        return FindLive() != nullptr;
    }
    if (!resource) {
        return GiveUp(instance);
    }
    const SoundChoice choice = theKernel->GetDefinitionStates().Choose(*resource);
    instance.SetFileName(choice.fileName);
    instance.SetSubstName(resource->GetOwnerName());
    instance.SetDefinitionName(name);
    if (resource->GetLooping()) {
        instance.SetLooping();
    }
    if (settings.loopStart != 0 || settings.loopEnd != 0) {
        instance.SetLoopRegion(settings.loopStart, settings.loopEnd);
    }
    else {
        instance.SetLoopRegion(resource->GetLoopStart(), resource->GetLoopEnd());
    }
    Adopt(instance, isNew);
    instance.SetGain(choice.gain);
    if (resource->GetLowPass() != instance.GetLowPass()) {
        instance.SetLowPass(resource->GetLowPass());
    }
    // Not filtered: the mask of resource effects applies to sound effects only.
    if (resource->GetFXList().GetNumEffects() > 0) {
        instance.SetCopyFXList(resource->GetFXList());
    }
    const std::uint32_t startsBefore = theKernel->GetStartSerial(instance);
    resource->ApplyMusicSettings(this);
    resource.Unlock();
    // The resource may have done so too.
    const bool isOurs = exists() && FindLive() == &instance;
    if (isOurs && theKernel->GetStartSerial(instance) == startsBefore) {
        return StartOrGiveUp(instance);
    }
    if (exists() && !isOurs) {
        delete &instance;
    }
    return FindLive() != nullptr;
}

bool Music::StartOrGiveUp(SndBase& instance)
{
    return theKernel->StartMusic(instance) || GiveUp(instance);
}

bool Music::GiveUp(SndBase& instance)
{
    soundID = 0;
    delete &instance;
    return false;
}

void Music::Adopt(SndBase& instance, bool isNew)
{
    if (isNew) {
        theKernel->AddSound(&instance);
    }
    soundID = instance.GetSoundID();
    instance.SetParentMusic(this);
    instance.SetPaused(paused);
}

bool Music::FadeOut(int ms)
{
    const SndBase::MusicHold hold;
    SndBase* instance = FindLive();
    return instance && instance->FadeOut(ms);
}

bool Music::CrossFade(const PString& name, int ms, bool loop)
{
    return CrossFade(name, nullptr, ms, loop);
}

bool Music::CrossFade(const PString& name, const ResourceDatabase* db, int ms, bool loop)
{
    return CrossFade(name, db, Settings{.loop = loop, .fadeMs = ms});
}

bool Music::CrossFade(const PString& name, const ResourceDatabase* db, const Settings& settings)
{
    const SndBase::MusicHold hold;
    FadeOut(settings.fadeMs);
    return Play(name, db, settings);
}

void Music::SetGain(float newGain)
{
    if (std::isnan(newGain)) {
        return;
    }
    gain = std::clamp(newGain, 0.0F, 1.0F);
    if (SndBase* instance = FindLive()) {
        instance->SetGain(SndBase::applyAgain);
    }
}

void Music::SetPaused(bool on)
{
    paused = on;
    if (SndBase* instance = FindLive()) {
        instance->SetPaused(on);
    }
}

unsigned long Music::GetRemainLength() const
{
    const SndBase* instance = FindLive();
    return instance ? instance->GetRemainLength() : 0;
}

unsigned long Music::GetPosition() const
{
    const SndBase* instance = FindLive();
    return instance ? instance->GetCurrentLength() : 0;
}

bool Music::SetPosition(unsigned long ms)
{
    const SndBase::MusicHold hold;
    SndBase* instance = FindLive();
    if (!instance || !instance->SeekTo(ms)) {
        return false;
    }
    if (notices) {
        notices->ForgetPosition();
    }
    return true;
}

SoundState Music::GetState() const
{
    SoundState state;
    if (const SndBase* instance = FindLive()) {
        instance->FillState(state);
    }
    return state;
}

} // namespace Quon
