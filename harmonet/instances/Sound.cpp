// How a group makes its sounds, and how it ends.

#include "harmonet/instances/Sound.h"

#include "harmonet/definitions/SoundResource.h"
#include "harmonet/files/BufferOwner.h"
#include "harmonet/files/SndFile.h"
#include "harmonet/instances/Snd2D.h"
#include "harmonet/instances/Snd3D.h"
#include "harmonet/instances/TakenResource.h"
#include "harmonet/kernel/SndKernel.h"

#include <algorithm>
#include <memory>

namespace Quon
{

namespace
{

constexpr int lookupMode = 2;

// What a sound takes over from its resource whatever its kind.
void ApplyCommonSettings(SndBase& sound, const SoundResource& resource)
{
    sound.SetGain(resource.GetGain());
    if (resource.GetLooping())
        sound.SetLooping();
    if (resource.GetChgFrequency())
        sound.AddFlags(FlagChgFrequency);
    if (resource.GetFrequency() != 0)
        sound.SetNewFrequency(static_cast<unsigned long>(resource.GetFrequency()));
    if (resource.GetDelay() > 0)
        sound.SetDelay(resource.GetDelay());
    sound.SetThisFXList(resource.GetFXList().DuplicateFiltered(theKernel->GetResourceFX()));
}

void ApplyPositionalSettings(Snd3D& sound, const SoundResource& resource)
{
    sound.InitMinMaxDistance(resource.GetMinDistance(), resource.GetMaxDistance(), resource.GetCutout());
    sound.InitCone(resource.GetInnerConeAngle(), resource.GetOuterConeAngle(), resource.GetConeGain());
    if (resource.GetDisableMicFX())
        sound.AddFlags(FlagDisableMicFX);
}

// Keeps the kernel from ending while observers are told.
class NoticeScope
{
public:
    NoticeScope()
        : kernel(theKernel)
    {
        if (kernel)
            kernel->BeginNotice();
    }
    ~NoticeScope()
    {
        if (kernel)
            kernel->EndNotice();
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
    if (theKernel)
        theKernel->DeleteSounds(this);
    hasShutDown = true;
    Notify([this](SoundObserver& observer) {
        observer.subject = nullptr;
        observer.Leave(*this);
        observer.OnShutDown();
    });
}

void Sound::AddObserver(SoundObserver* observer)
{
    // One that comes back from its OnShutDown() would keep the address of what is gone.
    if (hasShutDown || !observer)
        return;
    observer->subject = this;
    ObserverSubject::AddObserver(observer);
}

void Sound::RemoveObserver(SoundObserver* observer)
{
    if (!observer)
        return;
    observer->subject = nullptr;
    ObserverSubject::RemoveObserver(observer);
}

void Sound::OnSoundBegin(int soundID, const PString& fileName)
{
    const NoticeScope scope;
    Notify([&](SoundObserver& observer) { observer.OnSoundBegin(soundID, fileName); });
}

void Sound::OnSoundAbort(int soundID, const PString& fileName, int remaining)
{
    const NoticeScope scope;
    Notify([&](SoundObserver& observer) { observer.OnSoundAbort(soundID, fileName, remaining); });
}

void Sound::OnSoundEnd(int soundID, const PString& fileName)
{
    const NoticeScope scope;
    Notify([&](SoundObserver& observer) { observer.OnSoundEnd(soundID, fileName); });
}

void Sound::OnBufferFree(int soundID, void* buffer)
{
    const NoticeScope scope;
    Notify([&](SoundObserver& observer) { observer.OnBufferFree(soundID, buffer); });
}

bool Sound::CanMakeSounds() const
{
    return theKernel && theKernel->AcceptsSounds() && !closing;
}

int Sound::AddSound(SndBase* instance)
{
    theKernel->AddSound(instance);
    instance->SetParentSound(this);
    return instance->GetSoundID();
}

int Sound::New2DSound(const PString& name, const ResourceDatabase* db)
{
    if (!CanMakeSounds())
        return 0;
    auto made = std::make_unique<Snd2D>();
    made->SetDistLTMax();
    if (!db) {
        made->SetFileName(name);
        return AddSound(made.release());
    }
    TakenResource resource(name, *db, lookupMode);
    // Whoever heard of the load may have ended the system.
    if (!resource || !CanMakeSounds())
        return 0;
    Snd2D* sound = made.get();
    const int id = AddSound(made.release());
    ApplyCommonSettings(*sound, *resource);
    resource->ApplySoundSettings(this, id);
    NameData(id, *resource);
    return id;
}

int Sound::New3DSound(const PString& name, const ResourceDatabase* db)
{
    return New3DSound(name, db, false);
}

int Sound::New3DSound(const PString& name, const ResourceDatabase* db, bool ignorePlacement)
{
    if (!CanMakeSounds())
        return 0;
    auto made = std::make_unique<Snd3D>();
    made->BindAxisToDirection(defaultAxis);
    if (!db) {
        made->SetFileName(name);
        return AddSound(made.release());
    }
    TakenResource resource(name, *db, lookupMode);
    // Whoever heard of the load may have ended the system.
    if (!resource || !CanMakeSounds())
        return 0;
    Snd3D* sound = made.get();
    const int id = AddSound(made.release());
    ApplyCommonSettings(*sound, *resource);
    ApplyPositionalSettings(*sound, *resource);
    if (!ignorePlacement)
        sound->SetPosition(resource->GetPosition());
    resource->ApplySoundSettings(this, id);
    NameData(id, *resource);
    if (ignorePlacement || !resource->GetPolyline())
        return id;
    // While the resource still holds the points.
    return NewPolylineSound(id, resource->GetPolyline(), static_cast<unsigned int>(resource->GetNumPoints()),
        static_cast<unsigned int>(std::max(resource->GetNumAddSounds(), 0)), resource->GetMinAngle());
}

// The resource's own code may have ended the sound meanwhile.
void Sound::NameData(int id, const SoundResource& resource)
{
    if (SndBase* sound = FindSound(id)) {
        sound->SetFileName(resource.GetFileName());
        sound->SetSubstName(resource.GetOwnerName());
    }
}

int Sound::New2DSound(void* data, unsigned long size, WaveFormatEx* format)
{
    if (!CanMakeSounds())
        return 0;
    auto sound = std::make_unique<Snd2D>();
    sound->SetDistLTMax();
    SndFile* file = SndFile::OpenFile(data, size, format);
    return file ? AddMemorySound(sound.release(), file) : 0;
}

int Sound::New3DSound(void* data, unsigned long size, WaveFormatEx* format)
{
    if (!CanMakeSounds())
        return 0;
    auto sound = std::make_unique<Snd3D>();
    sound->BindAxisToDirection(defaultAxis);
    SndFile* file = SndFile::OpenFile(data, size, format);
    return file ? AddMemorySound(sound.release(), file) : 0;
}

int Sound::AddMemorySound(SndBase* instance, SndFile* file)
{
    instance->SetSndFile(file);
    instance->SetSoundLength(file->GetSoundLength());
    return AddSound(instance);
}

unsigned long Sound::CalcSoundLength(const PString& name, const ResourceDatabase* db)
{
    if (!theKernel)
        return 0;
    if (!db)
        return theKernel->GetLength(PString(), name);
    TakenResource resource(name, *db, lookupMode);
    return resource && theKernel ? theKernel->GetLength(resource->GetOwnerName(), resource->GetFileName())
                                 : 0;
}

} // namespace Quon
