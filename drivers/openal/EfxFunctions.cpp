#include "drivers/openal/EfxFunctions.h"

namespace Quon
{

namespace
{

template<class Function>
bool LoadFunction(Function& function, const char* name)
{
    function = reinterpret_cast<Function>(alGetProcAddress(name));
    return function;
}

bool HasReverb(const EfxFunctions& efx)
{
    alGetError();
    ALuint effect = 0;
    efx.genEffects(1, &effect);
    efx.effecti(effect, AL_EFFECT_TYPE, AL_EFFECT_EAXREVERB);
    const bool isThere = alGetError() == AL_NO_ERROR;
    efx.deleteEffects(1, &effect);
    return isThere;
}

} // namespace

int EfxFunctions::Load()
{
    // Within a ContextScope this is the device of the thread's own context.
    ALCdevice* const device = alcGetContextsDevice(alcGetCurrentContext());
    if (!device || !alcIsExtensionPresent(device, ALC_EXT_EFX_NAME)) {
        return 0;
    }
    const bool isComplete = LoadFunction(genEffects, "alGenEffects") &&
        LoadFunction(deleteEffects, "alDeleteEffects") && LoadFunction(effecti, "alEffecti") &&
        LoadFunction(effectf, "alEffectf") && LoadFunction(genFilters, "alGenFilters") &&
        LoadFunction(deleteFilters, "alDeleteFilters") && LoadFunction(filteri, "alFilteri") &&
        LoadFunction(filterf, "alFilterf") && LoadFunction(genSlots, "alGenAuxiliaryEffectSlots") &&
        LoadFunction(deleteSlots, "alDeleteAuxiliaryEffectSlots") &&
        LoadFunction(sloti, "alAuxiliaryEffectSloti") && LoadFunction(slotf, "alAuxiliaryEffectSlotf");
    version = GetSoftVersion();
    ALCint sends = 0;
    alcGetIntegerv(device, ALC_MAX_AUXILIARY_SENDS, 1, &sends);
    return isComplete && sends > 0 && HasReverb(*this) ? sends : 0;
}

} // namespace Quon
