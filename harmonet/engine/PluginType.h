#pragma once

#include "harmonet/engine/Alloc.h"

#include <atomic>

namespace Quon
{

/// What a plug-in library adds to the engine: reference-counted objects that stand in the PluginRegistry.
/// They are made with `new`; the registry holds the first reference, and the last one given back deletes the
/// object.
class HARMONET_ENGINE_API PluginSystemBase : public Allocated
{
public:
    PluginSystemBase() = default;
    PluginSystemBase(const PluginSystemBase&) = delete;
    PluginSystemBase& operator=(const PluginSystemBase&) = delete;

    /// Any thread.
    virtual void AddReference() const = 0;

    /// The last reference deletes the object. Any thread.
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
    /// Enters the object in the registry, which takes a reference.
    PluginType();
    ~PluginType() override;

private:
    /// Publishes nothing; it only decides who deletes the object.
    mutable std::atomic<int> references{0};
};

} // namespace Quon
