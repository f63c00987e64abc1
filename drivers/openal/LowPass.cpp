#include "drivers/openal/LowPass.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace Quon
{

namespace
{

constexpr double cornerHz = 1000.0;
/// The corner frequency must be well below half the rate.
constexpr double highestCorner = 0.4;
constexpr double rampsPerSecond = 20.0;
/// Time for which the filter runs before its output is used.
constexpr double settleSeconds = 0.003;
constexpr double damping = std::numbers::sqrt2;
/// Residues of a silent sound below this are cleared, since denormals would be slow to compute with.
constexpr double inaudible = 1e-20;

} // namespace

void LowPass::SetGain(float newGain)
{
    const double newTarget = std::sqrt(double{newGain});
    if (newTarget != target) {
        target = newTarget;
        step = 0.0;
    }
    if (!hasBegun) {
        root = target;
    }
}

void LowPass::Apply(std::span<float> pcm, int channels, double rateHz)
{
    hasBegun = hasBegun || !pcm.empty();
    if (root == 1.0 && target == 1.0) {
        memories = {};
        settled = 0.0;
        return;
    }
    if (step == 0.0) {
        step = (target - root) * rampsPerSecond / rateHz;
    }
    const double corner = std::tan(std::numbers::pi * std::min(cornerHz / rateHz, highestCorner));
    const double toBand = 1.0 / (1.0 + corner * (corner + damping));
    const auto width = static_cast<std::size_t>(channels);
    for (std::size_t i = 0; i + width <= pcm.size(); i += width) {
        if (settled >= settleSeconds) {
            root = step < 0.0 ? std::max(root + step, target) : std::min(root + step, target);
        }
        settled += 1.0 / rateHz;
        for (std::size_t channel = 0; channel < width; ++channel) {
            Memory& memory = memories[channel];
            const double x = pcm[i + channel];
            const double band = toBand * (memory.band + corner * (x - memory.low));
            const double low = memory.low + corner * band;
            memory.band = 2.0 * band - memory.band;
            memory.low = 2.0 * low - memory.low;
            const double high = x - damping * band - low;
            pcm[i + channel] = static_cast<float>(low + damping * root * band + root * root * high);
        }
    }
    for (Memory& memory : memories) {
        if (std::abs(memory.band) + std::abs(memory.low) < inaudible) {
            memory = {};
        }
    }
}

} // namespace Quon
