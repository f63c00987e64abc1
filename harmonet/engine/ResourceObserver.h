#pragma once

#include "harmonet/engine/Export.h"

namespace Quon
{

class Resource;

/// Whoever wants to hear when a resource's content comes and goes. The observer is not owned by the resource
/// and must be removed before it dies. Task thread only.
class HARMONET_ENGINE_API ResourceObserver
{
public:
    ResourceObserver() = default;
    ResourceObserver(const ResourceObserver&) = default;
    ResourceObserver& operator=(const ResourceObserver&) = default;
    virtual ~ResourceObserver();

    /// The resource has been loaded, the first time or again.
    virtual void OnResourceLoaded(const Resource& resource) const = 0;

    /// What the resource holds is no longer valid: its file has changed, or it is about to go.
    virtual void OnResourceUnloaded(const Resource& resource) const = 0;
};

} // namespace Quon
