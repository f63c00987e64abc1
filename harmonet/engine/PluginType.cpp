#include "harmonet/engine/PluginType.h"

#include "harmonet/engine/PluginRegistry.h"

namespace Quon
{

PluginSystemBase::~PluginSystemBase() = default;

PluginType::PluginType()
{
    PluginRegistry::Get().Add(*this);
}

PluginType::~PluginType() = default;

void PluginType::AddReference() const
{
    references.fetch_add(1, std::memory_order_relaxed);
}

void PluginType::ReleaseReference() const
{
    if (references.fetch_sub(1, std::memory_order_acq_rel) == 1) {
        delete this;
    }
}

} // namespace Quon
