#include "harmonet/instances/TakenResource.h"

#include "harmonet/definitions/SoundResource.h"
#include "harmonet/engine/ResourceDatabase.h"

namespace Quon
{

// By way of the other constructor, so that the reference goes back if the load throws.
TakenResource::TakenResource(const PString& name, const ResourceDatabase& database, int mode)
    : TakenResource()
{
    const Resource* resource = database.Lookup(name, mode);
    if (!resource)
        return;
    sound = dynamic_cast<const SoundResource*>(resource);
    if (!sound) {
        resource->ReleaseReference();
        return;
    }
    isLocked = sound->Lock(&database).IsOk();
}

TakenResource::~TakenResource()
{
    Unlock();
    if (sound)
        sound->ReleaseReference();
}

void TakenResource::Unlock()
{
    if (isLocked)
        sound->Unlock();
    isLocked = false;
}

} // namespace Quon
