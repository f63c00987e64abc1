#include "harmonet/instances/TakenResource.h"

#include "harmonet/definitions/SoundResource.h"
#include "harmonet/engine/Messages.h"
#include "harmonet/engine/ResourceDatabase.h"

namespace Quon
{

// Delegates to the other constructor, so that the reference is released if the load throws.
TakenResource::TakenResource(const PString& name, const ResourceDatabase& database, LookupMode mode)
    : TakenResource()
{
    const Resource* resource = database.Lookup(name, mode);
    if (!resource) {
        Report(MessageLevel::Error, "resource '", name,
            "' does not exist: no folder has a file of this name, or no resource type has its extension");
        return;
    }
    sound = dynamic_cast<const SoundResource*>(resource);
    if (!sound) {
        Report(MessageLevel::Error, "resource '", name, "' is not a sound");
        resource->ReleaseReference();
        return;
    }
    isLocked = sound->Lock(&database).IsOk();
    if (!isLocked) {
        Report(MessageLevel::Error, "resource '", name, "' of owner '", sound->GetOwnerName(),
            "' cannot be loaded");
    }
}

TakenResource::~TakenResource()
{
    Unlock();
    if (sound) {
        sound->ReleaseReference();
    }
}

void TakenResource::Unlock()
{
    if (isLocked) {
        sound->Unlock();
    }
    isLocked = false;
}

} // namespace Quon
