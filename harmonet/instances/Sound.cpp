// Creation of a group's sounds, and the group's destruction.

#include "harmonet/instances/Sound.h"

#include "harmonet/definitions/SoundResource.h"
#include "harmonet/engine/Messages.h"
#include "harmonet/files/BufferOwner.h"
#include "harmonet/files/SndFile.h"
#include "harmonet/instances/OrNothing.h"
#include "harmonet/instances/Snd2D.h"
#include "harmonet/instances/Snd3D.h"
#include "harmonet/instances/TakenResource.h"
#include "harmonet/kernel/SndKernel.h"
#include "harmonet/kernel/SoundTrace.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace Quon
{

namespace
{

// Applies to the rate of the definition, or otherwise to that of the file when it is opened.
void ApplyFrequencyFactor(SndBase& sound, float factor)
{
    sound.AddFlags(FlagChgFrequency);
    if (const auto hz = static_cast<int>(sound.GetFrequency())) {
        sound.SetNewFrequency(ScaleFrequency(hz, factor));
    }
    else {
        sound.SetFrequencyFactor(factor);
    }
}

// The settings that any kind of sound takes from its resource.
void ApplyCommonSettings(SndBase& sound, const SoundResource& resource, const SoundChoice& choice)
{
    sound.SetDefinitionName(resource.GetName());
    sound.SetGain(choice.gain);
    sound.SetLowPass(resource.GetLowPass());
    if (resource.GetLooping()) {
        sound.SetLooping();
    }
    if (resource.GetChgFrequency()) {
        sound.AddFlags(FlagChgFrequency);
    }
    if (resource.GetFrequency() != 0) {
        sound.SetNewFrequency(static_cast<unsigned long>(resource.GetFrequency()));
    }
    if (resource.GetDelay() > 0) {
        sound.SetDelay(resource.GetDelay());
    }
    sound.SetLoopRegion(resource.GetLoopStart(), resource.GetLoopEnd());
    sound.SetThisFXList(resource.GetFXList().DuplicateFiltered(theKernel->GetResourceFX()));
    if (choice.frequencyFactor != 1.0F) {
        ApplyFrequencyFactor(sound, choice.frequencyFactor);
    }
    if (resource.GetLimits().LimitsAnything()) {
        DefinitionState& state = theKernel->GetDefinitionStates().Get(resource);
        state.limits = resource.GetLimits();
        sound.SetLimitedBy(&state);
    }
}

void ApplyPositionalSettings(Snd3D& sound, const SoundResource& resource)
{
    sound.InitMinMaxDistance(resource.GetMinDistance(), resource.GetMaxDistance(), resource.GetCutout());
    sound.InitCone(resource.GetInnerConeAngle(), resource.GetOuterConeAngle(), resource.GetConeGain());
    sound.SetDoppler(resource.GetDoppler());
    if (resource.GetDisableMicFX()) {
        sound.AddFlags(FlagDisableMicFX);
    }
}

// Prevents the kernel from ending during a notification, which is reported to the trace first.
class NoticeScope
{
public:
    NoticeScope(SoundNotice notice, int soundID, const PString& fileName)
        : kernel(theKernel)
    {
        if (!kernel) {
            return;
        }
        kernel->BeginNotice();
        kernel->TraceNotice(notice, soundID, fileName);
    }
    ~NoticeScope()
    {
        if (kernel) {
            kernel->EndNotice();
        }
    }
    NoticeScope(const NoticeScope&) = delete;
    NoticeScope& operator=(const NoticeScope&) = delete;

private:
    SndKernel* const kernel;
};

} // namespace

void NotifyBufferFree(Sound& owner, unsigned int soundID, void* buffer)
{
    owner.OnBufferFree(static_cast<int>(soundID), buffer);
}

Sound::Sound() = default;

Sound::~Sound()
{
    closing = true;
    if (theKernel) {
        theKernel->DeleteSounds(this);
    }
    hasShutDown = true;
    Notify([this](SoundObserver& observer) {
        observer.subject = nullptr;
        observer.links.Leave(*this);
        observer.OnShutDown();
    });
}

void Sound::AddObserver(SoundObserver* observer)
{
    // An observer added in its OnShutDown() would keep a dangling pointer.
    if (hasShutDown || !observer) {
        return;
    }
    ObserverSubject::AddObserver(observer);
    observer->subject = this;
}

void Sound::RemoveObserver(SoundObserver* observer)
{
    if (!observer) {
        return;
    }
    observer->subject = nullptr;
    ObserverSubject::RemoveObserver(observer);
}

void Sound::OnSoundBegin(int soundID, const PString& fileName)
{
    const NoticeScope scope(SoundNotice::Begin, soundID, fileName);
    Notify([&](SoundObserver& observer) { observer.OnSoundBegin(soundID, fileName); });
}

void Sound::OnSoundAbort(int soundID, const PString& fileName, int remaining)
{
    const NoticeScope scope(SoundNotice::Abort, soundID, fileName);
    Notify([&](SoundObserver& observer) { observer.OnSoundAbort(soundID, fileName, remaining); });
}

void Sound::OnSoundEnd(int soundID, const PString& fileName)
{
    const NoticeScope scope(SoundNotice::End, soundID, fileName);
    Notify([&](SoundObserver& observer) { observer.OnSoundEnd(soundID, fileName); });
}

void Sound::OnBufferFree(int soundID, void* buffer)
{
    const NoticeScope scope(SoundNotice::BufferFree, soundID, PString());
    Notify([&](SoundObserver& observer) { observer.OnBufferFree(soundID, buffer); });
}

SoundState Sound::GetState(int id)
{
    SoundState state;
    if (const SndBase* sound = theKernel ? theKernel->FindSound(id) : nullptr) {
        sound->FillState(state);
    }
    return state;
}

bool Sound::CanMakeSounds() const
{
    if (theKernel && theKernel->AcceptsSounds() && !closing) {
        return true;
    }
    Report(MessageLevel::Error, "a sound cannot be created: ",
        theKernel ? "the sound system or its group is being stopped" : "the sound system is not running");
    return false;
}

int Sound::AddSound(SndBase* instance)
{
    // If memory for its table entry runs out, it is deleted at once without notifications.
    std::unique_ptr<SndBase> owned(instance);
    theKernel->AddSound(instance);
    static_cast<void>(owned.release());
    instance->SetParentSound(this);
    return instance->GetSoundID();
}

int Sound::New2DSound(const PString& name, const ResourceDatabase* db)
{
    return CanMakeSounds() ? OrNothing([&] { return Make2DSound(name, db); }) : 0;
}

int Sound::Make2DSound(const PString& name, const ResourceDatabase* db)
{
    auto made = std::make_unique<Snd2D>();
    made->SetDistLTMax();
    if (!db) {
        made->SetFileName(name);
        return AddSound(made.release());
    }
    TakenResource resource(name, *db, SoundLookup);
    // An observer of the load may have ended the system.
    if (!resource || !CanMakeSounds()) {
        return 0;
    }
    const SoundChoice choice = theKernel->GetDefinitionStates().Choose(*resource);
    ApplyCommonSettings(*made, *resource, choice);
    const int id = AddSound(made.release());
    resource->ApplySoundSettings(this, id);
    NameData(id, choice.fileName, resource->GetOwnerName());
    return id;
}

int Sound::New3DSound(const PString& name, const ResourceDatabase* db)
{
    return New3DSound(name, db, false);
}

int Sound::New3DSound(const PString& name, const ResourceDatabase* db, bool ignorePlacement)
{
    return CanMakeSounds() ? OrNothing([&] { return Make3DSound(name, db, ignorePlacement); }) : 0;
}

int Sound::Make3DSound(const PString& name, const ResourceDatabase* db, bool ignorePlacement)
{
    auto made = std::make_unique<Snd3D>();
    made->BindAxisToDirection(defaultAxis);
    if (!db) {
        made->SetFileName(name);
        return AddSound(made.release());
    }
    TakenResource resource(name, *db, SoundLookup);
    // An observer of the load may have ended the system.
    if (!resource || !CanMakeSounds()) {
        return 0;
    }
    const SoundChoice choice = theKernel->GetDefinitionStates().Choose(*resource);
    ApplyCommonSettings(*made, *resource, choice);
    ApplyPositionalSettings(*made, *resource);
    if (!ignorePlacement) {
        made->SetPosition(resource->GetPosition());
    }
    const int id = AddSound(made.release());
    resource->ApplySoundSettings(this, id);
    NameData(id, choice.fileName, resource->GetOwnerName());
    if (ignorePlacement || !resource->GetPolyline()) {
        return id;
    }
    // While the resource is locked and still has the points.
    return NewPolylineSound(id, resource->GetPolyline(), static_cast<unsigned int>(resource->GetNumPoints()),
        static_cast<unsigned int>(std::max(resource->GetNumAddSounds(), 0)), resource->GetMinAngle());
}

// The resource's code may have ended the sound meanwhile.
void Sound::NameData(int id, const PString& fileName, const PString& ownerName)
{
    if (SndBase* sound = FindSound(id)) {
        sound->SetFileName(fileName);
        sound->SetSubstName(ownerName);
    }
}

int Sound::New2DSound(void* data, unsigned long size, WaveFormatEx* format)
{
    if (!CanMakeSounds()) {
        return 0;
    }
    return OrNothing([&] {
        auto sound = std::make_unique<Snd2D>();
        sound->SetDistLTMax();
        return AddMemorySound(std::move(sound), SndFile::OpenFile(data, size, format));
    });
}

int Sound::New3DSound(void* data, unsigned long size, WaveFormatEx* format)
{
    if (!CanMakeSounds()) {
        return 0;
    }
    return OrNothing([&] {
        auto sound = std::make_unique<Snd3D>();
        sound->BindAxisToDirection(defaultAxis);
        return AddMemorySound(std::move(sound), SndFile::OpenFile(data, size, format));
    });
}

int Sound::AddMemorySound(std::unique_ptr<SndBase> instance, SndFile* file)
{
    if (!file) {
        return 0;
    }
    instance->SetSndFile(file);
    instance->SetSoundLength(file->GetSoundLength());
    return AddSound(instance.release());
}

unsigned long Sound::CalcSoundLength(const PString& name, const ResourceDatabase* db)
{
    return OrNothing([&]() -> unsigned long {
        if (!theKernel) {
            return 0;
        }
        if (!db) {
            return theKernel->GetLength(PString(), name);
        }
        TakenResource resource(name, *db, SoundLookup);
        return resource && theKernel ? theKernel->GetLength(resource->GetOwnerName(), resource->GetFileName())
                                     : 0;
    });
}

} // namespace Quon
