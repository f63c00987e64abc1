#include "drivers/openal/effects/Effect.h"

#include "drivers/openal/effects/FlushToZero.h"

namespace Quon
{

namespace
{

/// 120 dB above full scale.
constexpr float loudest = 1e6F;

void ClampToFinite(std::span<float> pcm)
{
    for (float& sample : pcm) {
        const float number = sample == sample ? sample : 0.0F;
        const float notTooLow = number < -loudest ? -loudest : number;
        sample = notTooLow > loudest ? loudest : notTooLow;
    }
}

} // namespace

Effect::~Effect() = default;

void Effect::Process(std::span<float> pcm)
{
    const FlushToZero guard;
    ClampToFinite(pcm);
    Apply(pcm);
}

} // namespace Quon
