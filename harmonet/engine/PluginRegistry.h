#pragma once

#include "harmonet/engine/Alloc.h"

#include <list>

namespace Quon
{

class PluginType;

/// The list of all plug-in types of the process, in the order of their creation. It holds a reference to
/// each. Task thread only.
class HARMONET_ENGINE_API PluginRegistry
{
public:
    /// The list of types.
    using Types = std::list<const PluginType*, EngineAllocator<const PluginType*>>;

    /// The only registry, created at the first call.
    static PluginRegistry& Get();

    /// Adds a type and a reference to it. Called by PluginType's constructor.
    void Add(const PluginType& type);

    /// Releases all types. A host calls this before it unloads the libraries that define the types, since
    /// their code is unloaded too, and after the resource databases that use them have been destroyed.
    void ReleaseAll();

    /// Valid until the list changes.
    const Types& GetTypes() const { return types; }

private:
    PluginRegistry();
    ~PluginRegistry();
    PluginRegistry(const PluginRegistry&) = delete;
    PluginRegistry& operator=(const PluginRegistry&) = delete;

    Types types;
};

} // namespace Quon
