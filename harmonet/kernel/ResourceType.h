#pragma once

#include "harmonet/engine/ResourceTypeBase.h"

namespace Quon
{

/// A kind of resource whose objects are of class T. Made with `new` and left to the plug-in registry, which
/// owns it from then on. Task thread only.
template<class T>
class ResourceType final : public ResourceTypeBase
{
public:
    using ResourceTypeBase::ResourceTypeBase;

    /// A new T that is not loaded yet; the caller owns it.
    Resource* Create(const PString& resourceName, const ResourceDatabase* database) const override
    {
        return new T(resourceName, database);
    }

    int GetSize() const override { return static_cast<int>(sizeof(T)); }

private:
    ~ResourceType() override = default;
};

} // namespace Quon
