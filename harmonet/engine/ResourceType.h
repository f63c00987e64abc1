#pragma once

#include "harmonet/engine/ResourceTypeBase.h"

namespace Quon
{

/// A resource type whose objects are of class T. Create it with `new`; the plug-in registry owns it from then
/// on. Task thread only.
template<class T>
class ResourceType final : public ResourceTypeBase
{
public:
    using ResourceTypeBase::ResourceTypeBase;

    /// Returns a new T that is not loaded yet; the caller owns it.
    Resource* Create(const PString& resourceName, const ResourceDatabase* database) const override
    {
        return new T(resourceName, database);
    }

    int GetSize() const override { return static_cast<int>(sizeof(T)); }

private:
    ~ResourceType() override = default;
};

} // namespace Quon
