#pragma once

#include "harmonet/engine/Alloc.h"

#include <atomic>

namespace Quon
{

/// The base of reference-counted objects that a plug-in library adds to the engine through the
/// PluginRegistry. Create them with `new`; the registry holds the first reference, and releasing the last one
/// deletes the object.
class HARMONET_ENGINE_API PluginSystemBase : public Allocated
{
public:
    PluginSystemBase() = default;
    PluginSystemBase(const PluginSystemBase&) = delete;
    PluginSystemBase& operator=(const PluginSystemBase&) = delete;

    /// Any thread.
    virtual void AddReference() const = 0;

    /// Releasing the last reference deletes the object. Any thread.
    virtual void ReleaseReference() const = 0;

protected:
    virtual ~PluginSystemBase();
};

/// The base of plug-in types: counts the references, and enters itself in the registry.
class HARMONET_ENGINE_API PluginType : public PluginSystemBase
{
public:
    void AddReference() const override;
    void ReleaseReference() const override;

protected:
    /// Adds the object to the registry, which takes a reference.
    PluginType();
    ~PluginType() override;

private:
    /// Publishes no other data; it only decides who deletes the object.
    mutable std::atomic<int> references{0};
};

} // namespace Quon
