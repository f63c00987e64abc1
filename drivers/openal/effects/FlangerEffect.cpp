#include "drivers/openal/effects/FlangerEffect.h"

#include "drivers/openal/effects/Defaults.h"

namespace Quon
{

namespace
{
constexpr float longestDelayMs = 4.0f;
} // namespace

FlangerEffect::FlangerEffect(const FXFlanger& wanted, const PcmLayout& pcmLayout)
    : EffectWith(HoldSweep(wanted, GetDefault<FXFlanger>(SndFXFlanger), longestDelayMs), pcmLayout)
    , delay(ToSettings(parameters), pcmLayout)
{
}

} // namespace Quon
