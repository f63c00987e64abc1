#pragma once

#include "drivers/openal/SoftVersion.h"

#include <AL/al.h>
#include <AL/alc.h>
#include <AL/efx.h>

namespace Quon
{

/// The functions of OpenAL's effects extension, which must be queried by name. A plain table, filled when a
/// device is opened and then only read, from any thread.
struct EfxFunctions
{
    LPALGENEFFECTS genEffects = nullptr;
    LPALDELETEEFFECTS deleteEffects = nullptr;
    LPALEFFECTI effecti = nullptr;
    LPALEFFECTF effectf = nullptr;
    LPALGENFILTERS genFilters = nullptr;
    LPALDELETEFILTERS deleteFilters = nullptr;
    LPALFILTERI filteri = nullptr;
    LPALFILTERF filterf = nullptr;
    LPALGENAUXILIARYEFFECTSLOTS genSlots = nullptr;
    LPALDELETEAUXILIARYEFFECTSLOTS deleteSlots = nullptr;
    LPALAUXILIARYEFFECTSLOTI sloti = nullptr;
    LPALAUXILIARYEFFECTSLOTF slotf = nullptr;
    SoftVersion version = SoftVersion::New;

    /// Loads the functions and returns the number of effects that one source can be sent to; 0 if any
    /// function is missing, or the reverb, which a user's configuration can exclude. Needs a ContextScope.
    int Load();
};

} // namespace Quon
