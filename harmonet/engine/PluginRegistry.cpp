#include "harmonet/engine/PluginRegistry.h"

#include "harmonet/engine/PluginType.h"

namespace Quon
{

PluginRegistry& PluginRegistry::Get()
{
    static PluginRegistry registry;
    return registry;
}

PluginRegistry::PluginRegistry() = default;

PluginRegistry::~PluginRegistry()
{
    ReleaseAll();
}

void PluginRegistry::Add(const PluginType& type)
{
    types.push_back(&type);
    type.AddReference();
}

void PluginRegistry::ReleaseAll()
{
    // Removed from the list first, so that no type is found while it is being released.
    Types going;
    going.swap(types);
    for (const PluginType* type : going) {
        type->ReleaseReference();
    }
}

} // namespace Quon
