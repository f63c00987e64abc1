#pragma once

#include "fuzz/game/GameFolder.h"

namespace Quon
{

/// Returns the folder that the targets with a sound system share, with an extra file for the input.
inline GameFolder& GetSharedFolder()
{
    static GameFolder folder;
    return folder;
}

} // namespace Quon
