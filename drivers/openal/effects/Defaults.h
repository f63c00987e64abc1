#pragma once

#include "harmonet/definitions/SndFXList.h"

namespace Quon
{

/// The default parameters of `effect`, whose record is a Record.
template<class Record>
const Record& GetDefault(SndFX effect)
{
    return *static_cast<const Record*>(GetFXDefault(effect).record);
}

} // namespace Quon
