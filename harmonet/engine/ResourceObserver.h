#pragma once

#include "harmonet/engine/Export.h"

namespace Quon
{

class Resource;

/// Receives a notification when a resource's content is loaded or unloaded. The resource does not own the
/// observer, which must be removed before it is destroyed. Task thread only.
class HARMONET_ENGINE_API ResourceObserver
{
public:
    ResourceObserver() = default;
    ResourceObserver(const ResourceObserver&) = default;
    ResourceObserver& operator=(const ResourceObserver&) = default;
    virtual ~ResourceObserver();

    /// The resource has been loaded or reloaded.
    virtual void OnResourceLoaded(const Resource& resource) const = 0;

    /// The content is no longer valid: the file has changed, or the resource is about to be destroyed.
    virtual void OnResourceUnloaded(const Resource& resource) const = 0;
};

} // namespace Quon
