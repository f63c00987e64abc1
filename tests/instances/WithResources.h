#pragma once

#include "harmonet/engine/PluginRegistry.h"
#include "harmonet/engine/ResourceDatabase.h"
#include "harmonet/kernel/QuonGetPlugins.h"

#include <gtest/gtest.h>

namespace Quon
{

/// A fixture of sounds with the library's resource types registered and its folder added to a database, as
/// "sounds".
template<class Base>
class WithResources : public Base
{
protected:
    WithResources()
    {
        QuonGetPlugins();
        EXPECT_TRUE(database.AddFolder("sounds", this->folder.GetPath().string().c_str()));
    }
    ~WithResources() override
    {
        this->group.reset();
        this->system.Done();
        // Resources that were unused for two passes are dropped.
        database.DropUnused();
        database.DropUnused();
        PluginRegistry::Get().ReleaseAll();
    }

    ResourceDatabase database;
};

} // namespace Quon
