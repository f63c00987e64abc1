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
    // Off the list first, so that nobody meets a type that is going.
    Types going;
    going.swap(types);
    for (const PluginType* type : going) {
        type->ReleaseReference();
    }
}

} // namespace Quon
