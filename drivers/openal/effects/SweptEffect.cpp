#include "drivers/openal/effects/SweptEffect.h"

#include "drivers/openal/effects/Defaults.h"

namespace Quon
{

ChorusEffect::ChorusEffect(const FXChorus& wanted, const PcmLayout& pcmLayout)
    : SweptEffect(ClampToRanges(SndFXChorus, wanted), pcmLayout)
{
}

FlangerEffect::FlangerEffect(const FXFlanger& wanted, const PcmLayout& pcmLayout)
    : SweptEffect(ClampToRanges(SndFXFlanger, wanted), pcmLayout)
{
}

} // namespace Quon
