#include "harmonet/kernel/SoundTable.h"

#include "harmonet/instances/SndBase.h"

namespace Quon
{

int SoundTable::GetId(const SndBase& sound)
{
    return sound.GetSoundID();
}

void SoundTable::Add(SndBase* sound)
{
    lastSound = sound;
    lastID = sound->soundID;
    buckets[BucketOf(lastID)].AddWhereRoom(sound);
}

SndBase* SoundTable::Find(int id) const
{
    if (id == lastID)
        return lastSound;
    const Bucket& bucket = buckets[BucketOf(id)];
    for (auto place = bucket.GetBegin(); place.IsValid(); place.MoveOn()) {
        if ((*place)->soundID == id)
            return *place;
    }
    return nullptr;
}

void SoundTable::Remove(SndBase* sound)
{
    if (sound == lastSound) {
        lastSound = nullptr;
        lastID = 0;
    }
    Bucket& bucket = buckets[BucketOf(sound->soundID)];
    for (auto place = bucket.GetBegin(); place.IsValid(); place.MoveOn()) {
        if (*place == sound) {
            bucket.EraseUnordered(place);
            return;
        }
    }
}

} // namespace Quon
