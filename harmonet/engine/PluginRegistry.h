#pragma once

#include "harmonet/engine/Alloc.h"

#include <list>

namespace Quon
{

class PluginType;

/// The one list of all plug-in types of the process, in the order in which they were made. It holds a
/// reference on each. Task thread only.
class HARMONET_ENGINE_API PluginRegistry
{
public:
    /// The list of types.
    using Types = std::list<const PluginType*, EngineAllocator<const PluginType*>>;

    /// The one registry, made at the first call.
    static PluginRegistry& Get();

    /// Enters a type and takes a reference on it. PluginType's constructor does this.
    void Add(const PluginType& type);

    /// Gives all types up. A host calls this before it unloads the libraries whose types stand here, since
    /// their code goes with them, and behind the resource databases that use them.
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
