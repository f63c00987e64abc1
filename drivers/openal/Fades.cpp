#include "drivers/openal/Fades.h"

#include <algorithm>

namespace Quon
{

void FadeInRamp::Start(double newDurationMs)
{
    durationMs = std::max(newDurationMs, 0.0);
    elapsedMs = 0.0;
}

void FadeInRamp::Apply(std::span<float> pcm, int channels, double rateHz)
{
    if (durationMs == 0.0) {
        return;
    }
    const double stepMs = 1000.0 / rateHz;
    const auto width = static_cast<std::size_t>(channels);
    for (std::size_t i = 0; i + width <= pcm.size() && elapsedMs < durationMs; i += width) {
        const auto level = static_cast<float>(elapsedMs / durationMs);
        for (float& sample : pcm.subspan(i, width)) {
            sample *= level;
        }
        elapsedMs += stepMs;
    }
    if (elapsedMs >= durationMs) {
        Cancel();
    }
}

void FadeOutRamp::Start(std::int64_t now, std::int64_t newLength)
{
    isRunning = true;
    begin = now;
    length = std::max<std::int64_t>(newLength, 0);
}

float FadeOutRamp::GetLevel(std::int64_t time) const
{
    if (!isRunning) {
        return 1.0F;
    }
    if (time >= begin + length) {
        return 0.0F;
    }
    const double passed = static_cast<double>(time - begin) / static_cast<double>(length);
    return static_cast<float>(std::clamp(1.0 - passed, 0.0, 1.0));
}

} // namespace Quon
