// Starting, stopping and continuing a group's sounds.

#include "harmonet/definitions/DefinitionState.h"
#include "harmonet/definitions/SoundResource.h"
#include "harmonet/engine/Messages.h"
#include "harmonet/engine/Particle.h"
#include "harmonet/files/SndFile.h"
#include "harmonet/files/SndNodeCache.h"
#include "harmonet/instances/OrNothing.h"
#include "harmonet/instances/SndPolyline.h"
#include "harmonet/instances/Sound.h"
#include "harmonet/instances/StartLimits.h"
#include "harmonet/instances/TakenResource.h"
#include "harmonet/kernel/SndKernel.h"
#include "harmonet/output/SndChannel.h"

namespace Quon
{

namespace
{

constexpr const char* notStarted = "is not started";
constexpr const char* notContinued = "is not continued";
constexpr const char* notQueued = "it has ended, loops, or was started without StartQueued";

// Holds the lock of a channel, if there is one.
class ChannelLock
{
public:
    explicit ChannelLock(SndChannel* newChannel)
        : channel(newChannel)
    {
        if (channel) {
            channel->Lock();
        }
    }
    ~ChannelLock()
    {
        if (channel) {
            channel->Unlock();
        }
    }
    ChannelLock(const ChannelLock&) = delete;
    ChannelLock& operator=(const ChannelLock&) = delete;

private:
    SndChannel* channel;
};

void ApplyStartFlags(SndBase& sound, int flags)
{
    if (flags & Sound::StartLooping) {
        sound.SetLooping();
    }
    if (flags & Sound::StartNotMovable) {
        sound.AddFlags(FlagNotMovable);
    }
    if ((flags & Sound::StartNoEmulation) && !sound.IsPolyline()) {
        sound.AddFlags(FlagNoEmulation);
    }
    if (flags & Sound::StartImmediately) {
        sound.AddFlags(FlagImmediately);
    }
    if ((flags & Sound::StartNowOrCompete) == Sound::StartNowOrCompete) {
        sound.AddFlags(FlagCompete);
    }
    if ((flags & Sound::StartQueued) && !(flags & Sound::StartLooping)) {
        sound.AddFlags(FlagQueued);
    }
    if ((flags & Sound::StartChgFrequency) && sound.GetThisFXList().GetNumEffects() == 0) {
        sound.AddFlags(FlagChgFrequency | FlagDisableMicFX);
    }
    if (flags & Sound::StartDisableMicFX) {
        sound.AddFlags(FlagDisableMicFX);
    }
}

void ReportRefused(int id, const char* what, const char* reason)
{
    Report(MessageLevel::Error, "sound ", id, " ", what, ": ", reason);
}

// A sound that was started without StartQueued does not accept more data.
bool MayAppend(const SndBase& sound)
{
    if (!sound.GetSndFile() && (sound.IsPlaying() || sound.GetFileName().IsEmpty())) {
        return false;
    }
    return !sound.IsPlaying() || sound.HasAnyFlag(FlagQueued);
}

bool HaveSameForm(const SoundFormat& a, const SoundFormat& b)
{
    return a.GetBytesPerSample() == b.GetBytesPerSample() && a.GetChannels() == b.GetChannels() &&
        a.GetSampleFrequency() == b.GetSampleFrequency();
}

bool OpenHead(SndBase& sound)
{
    if (sound.GetSndFile()) {
        return true;
    }
    SndFile* file =
        theKernel->GetDataCache()->OpenSound(sound.GetSubstName(), sound.GetFileName(), sound.GetPriority());
    if (!file) {
        return false;
    }
    sound.SetSndFile(file);
    sound.SetSoundLength(file->GetSoundLength());
    return true;
}

// Takes ownership of the file, or deletes it on failure.
bool Append(SndBase& sound, SndFile* file)
{
    if (!file) {
        return false;
    }
    if (!HaveSameForm(*file, *sound.GetSndFile())) {
        ReportRefused(sound.GetSoundID(), notContinued,
            "the rate, sample size or number of channels of the data differs from the sound's");
        delete file;
        return false;
    }
    sound.SetSoundLength(static_cast<std::uint32_t>(sound.GetSoundLength() + file->GetSoundLength()));
    sound.GetSndFile()->Add(file);
    return true;
}

bool Attach(Snd3D& sound, Particle* parent, const PString& nodeName)
{
    return !sound.IsPolyline() && parent && parent->Add(nodeName, &sound);
}

} // namespace

bool Sound::StartSound(int id, int flags)
{
    SndBase* sound = FindSound(id);
    if (!sound && id != 0) {
        ReportRefused(id, notStarted, "it has ended");
    }
    return sound && StartSound(*sound, flags);
}

bool Sound::StartSound(SndBase& sound, int flags)
{
    const int id = sound.GetSoundID();
    if (sound.IsInNotification() || sound.IsPlaying() || sound.GetSndChannel()) {
        ReportRefused(id, notStarted, "it is already playing, or is ending");
        return false;
    }
    if ((flags & StartLooping) && sound.HasAnyFlag(FlagQueued)) {
        ReportRefused(id, notStarted, "a sound with a queue cannot loop");
        return false;
    }
    DefinitionState* const definition = sound.GetLimitedBy();
    if (definition && !OrNothing([&] { return AdmitStart(sound); })) {
        return false;
    }
    ApplyStartFlags(sound, flags);
    const bool isStarted = OrNothing([&] {
        return sound.IsPolyline() ? StartPolyline(static_cast<SndPolyline&>(sound))
                                  : theKernel->PlaySound(&sound);
    });
    // The definition exists as long as the kernel, which is not deleted during a notification.
    if (definition && !isStarted) {
        definition->CancelStart(id);
    }
    return isStarted;
}

void Sound::StopSound(int id)
{
    SndBase* sound = FindSound(id);
    if (sound && !sound->IsInNotification()) {
        delete sound;
    }
}

void Sound::DeleteSound(int id)
{
    SndBase* sound = FindSound(id);
    if (!sound || sound->IsInNotification()) {
        return;
    }
    theKernel->UnregisterSound(sound);
    sound->SetParentSound(nullptr);
    delete sound;
}

void Sound::SetPaused(bool on)
{
    paused = on;
    if (theKernel) {
        theKernel->NotePauses();
    }
}

void Sound::SetSoundPaused(int id, bool on)
{
    SndBase* sound = FindSound(id);
    if (!sound) {
        return;
    }
    if (sound->IsPolyline()) {
        static_cast<SndPolyline*>(sound)->SetPaused(on);
    }
    else {
        sound->SetPaused(on);
    }
}

void Sound::PauseSound(int id)
{
    SetSoundPaused(id, true);
}

void Sound::ResumeSound(int id)
{
    SetSoundPaused(id, false);
}

bool Sound::IsSoundPaused(int id) const
{
    const SndBase* sound = FindSound(id);
    return sound && sound->IsPaused();
}

bool Sound::FadeOutSound(int id, unsigned int ms)
{
    SndBase* sound = FindSound(id);
    return sound && !sound->IsInNotification() &&
        OrNothing([&] { return sound->FadeOut(static_cast<int>(ms)); });
}

int Sound::Play2DSound(const PString& name, const ResourceDatabase* db, int flags, int priority, int delay)
{
    return Play(FindSound(New2DSound(name, db)), flags, priority, delay, [](SndBase&) {});
}

int Sound::Play2DSound(
    void* data, unsigned long size, WaveFormatEx* format, int flags, int priority, int delay)
{
    return Play(FindSound(New2DSound(data, size, format)), flags, priority, delay, [](SndBase&) {});
}

int Sound::Play3DSound(Particle* parent, const PString& nodeName, const PString& name,
    const ResourceDatabase* db, int flags, int priority, const Settings& settings, int delay)
{
    auto* const sound = static_cast<Snd3D*>(FindSound(New3DSound(name, db)));
    if (sound && !Attach(*sound, parent, nodeName)) {
        Report(MessageLevel::Error, "sound '", name, "' is not started: its node '", nodeName,
            "' is not below the parent, or there is no parent");
        DeleteSound(sound->GetSoundID());
        return 0;
    }
    return Play(sound, flags, priority, delay, [&](SndBase&) { ApplySettings(*sound, settings); });
}

int Sound::Play3DSound(const Vector3& position, const Quaternion& orientation, const PString& name,
    const ResourceDatabase* db, int flags, int priority, const Settings& settings, int delay)
{
    return Play(FindSound(New3DSound(name, db)), flags, priority, delay, [&](SndBase& sound) {
        auto& placed = static_cast<Snd3D&>(sound);
        ApplySettings(placed, settings);
        if (placed.IsPolyline()) {
            return;
        }
        placed.SetPosition(position);
        placed.SetOrientation(orientation);
    });
}

int Sound::Play3DSound(const Vector3& position, const PString& name, const ResourceDatabase* db, int flags,
    int priority, const Settings& settings, int delay)
{
    return Play(FindSound(New3DSound(name, db)), flags, priority, delay, [&](SndBase& sound) {
        auto& placed = static_cast<Snd3D&>(sound);
        ApplySettings(placed, settings);
        if (!placed.IsPolyline()) {
            placed.SetPosition(position);
        }
    });
}

// Sets up a new sound and starts it, or deletes it on failure; returns its id or 0. The resource's code may
// already have ended or started it.
template<class SetUp>
int Sound::Play(SndBase* sound, int flags, int priority, int delay, SetUp setUp)
{
    if (!sound) {
        return 0;
    }
    const int id = sound->GetSoundID();
    const bool isSetUp = OrNothing([&] {
        if (priority != 0) {
            sound->SetPriority(priority);
        }
        if (delay != 0 && !sound->IsPlaying()) {
            sound->SetDelay(delay);
        }
        setUp(*sound);
        return true;
    });
    if (isSetUp && StartSound(*sound, flags)) {
        return id;
    }
    DeleteSound(id);
    return 0;
}

void Sound::ApplySettings(Snd3D& sound, const Settings& settings)
{
    if (settings.setDistance) {
        sound.SetMinMaxDistance(settings.minDistance, settings.maxDistance, settings.cutout);
    }
    if (!settings.setCone) {
        return;
    }
    if (!sound.IsPolyline()) {
        sound.SetCone(settings.innerConeAngle, settings.outerConeAngle, settings.coneGain);
    }
    if (defaultAxis != Snd3D::defaultAxis) {
        sound.BindAxisToDirection(defaultAxis);
    }
}

bool Sound::CatSound(int id, const PString& name, const ResourceDatabase* db)
{
    return OrNothing([&] { return AppendFile(id, name, db); });
}

bool Sound::AppendFile(int id, const PString& name, const ResourceDatabase* db)
{
    SndBase* sound = FindForCat(id);
    if (!sound) {
        ReportRefused(id, notContinued, notQueued);
        return false;
    }
    PString fileName = name;
    PString ownerName;
    if (db) {
        TakenResource resource(name, *db, SoundLookup);
        // An observer of the load may have ended the system, or the sound.
        if (!resource || !theKernel) {
            return false;
        }
        fileName = theKernel->GetDefinitionStates().Choose(*resource).fileName;
        ownerName = resource->GetOwnerName();
        sound = FindForCat(id);
    }
    if (!sound || !MayAppend(*sound)) {
        ReportRefused(id, notContinued, notQueued);
        return false;
    }
    sound->AddFlags(FlagQueued);
    ChannelLock lock(sound->GetSndChannel());
    return OpenHead(*sound) && Append(*sound, theKernel->GetDataCache()->OpenSound(ownerName, fileName, 0));
}

bool Sound::CatSound(int id, void* data, unsigned long size, WaveFormatEx* format)
{
    SndBase* sound = FindForCat(id);
    if (!sound || !MayAppend(*sound)) {
        ReportRefused(id, notContinued, notQueued);
        return false;
    }
    sound->AddFlags(FlagQueued);
    ChannelLock lock(sound->GetSndChannel());
    return OrNothing(
        [&] { return OpenHead(*sound) && Append(*sound, SndFile::OpenFile(data, size, format)); });
}

SndBase* Sound::FindForCat(int id) const
{
    SndBase* sound = FindSound(id);
    return sound && theKernel->AcceptsSounds() && !sound->IsLooping() ? sound : nullptr;
}

int Sound::GetQueueLength(int id)
{
    const SndBase* sound = FindSound(id);
    return sound && sound->GetSndFile() ? sound->GetSndFile()->GetQueueLength() : 0;
}

bool Sound::AttachSound(int id, Particle* parent, const PString& nodeName)
{
    Snd3D* sound = Find3D(id);
    return sound && Attach(*sound, parent, nodeName);
}

} // namespace Quon
