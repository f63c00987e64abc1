#include "drivers/openal/effects/SweptEffect.h"

#include "drivers/openal/effects/Defaults.h"

namespace Quon
{

namespace
{
constexpr float longestChorusDelayMs = 20.0F;
constexpr float longestFlangerDelayMs = 4.0F;
} // namespace

ChorusEffect::ChorusEffect(const FXChorus& wanted, const PcmLayout& pcmLayout)
    : SweptEffect(HoldSweep(wanted, GetDefault<FXChorus>(SndFXChorus), longestChorusDelayMs), pcmLayout)
{
}

FlangerEffect::FlangerEffect(const FXFlanger& wanted, const PcmLayout& pcmLayout)
    : SweptEffect(HoldSweep(wanted, GetDefault<FXFlanger>(SndFXFlanger), longestFlangerDelayMs), pcmLayout)
{
}

} // namespace Quon
