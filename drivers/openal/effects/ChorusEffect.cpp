#include "drivers/openal/effects/ChorusEffect.h"

#include "drivers/openal/effects/Defaults.h"

namespace Quon
{

namespace
{
constexpr float longestDelayMs = 20.0f;
} // namespace

ChorusEffect::ChorusEffect(const FXChorus& wanted, const PcmLayout& pcmLayout)
    : EffectWith(HoldSweep(wanted, GetDefault<FXChorus>(SndFXChorus), longestDelayMs), pcmLayout)
    , delay(ToSettings(parameters), pcmLayout)
{
}

} // namespace Quon
