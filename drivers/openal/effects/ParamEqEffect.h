#pragma once

#include "drivers/openal/effects/Biquad.h"
#include "drivers/openal/effects/Effect.h"
#include "harmonet/definitions/FXRecords.h"

namespace Quon
{

/// Raises or lowers one band of the spectrum. The centre is at most a third of the rate.
class ParamEqEffect final : public EffectWith<FXParamEq>
{
public:
    ParamEqEffect(const FXParamEq& wanted, const PcmLayout& pcmLayout);

    void Reset() override { peak.Reset(); }

private:
    void Apply(std::span<float> pcm) override;

    Biquad peak;
};

} // namespace Quon
