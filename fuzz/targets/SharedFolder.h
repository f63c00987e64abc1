#pragma once

#include "fuzz/game/GameFolder.h"

namespace Quon
{

/// The one folder of the targets that run a sound system, with an extra file for the input.
inline GameFolder& GetSharedFolder()
{
    static GameFolder folder;
    return folder;
}

} // namespace Quon
