#pragma once

#include "drivers/openal/effects/DelayLine.h"

#include <cstddef>

namespace Quon
{

/// An all-pass filter: it spreads a click over some milliseconds and keeps the level of every frequency. A
/// plain value whose construction allocates.
class AllPass
{
public:
    explicit AllPass(int newDelay)
        : delay(static_cast<std::size_t>(newDelay))
        , line(newDelay)
    {
    }

    float Filter(float sample)
    {
        constexpr float strength = 0.6F;
        const float late = line.GetTap(delay);
        const float inner = sample + strength * late;
        line.Push(inner);
        return late - strength * inner;
    }

    void Clear() { line.Clear(); }

    int GetDelay() const { return static_cast<int>(delay); }

private:
    std::size_t delay;
    DelayLine line;
};

} // namespace Quon
