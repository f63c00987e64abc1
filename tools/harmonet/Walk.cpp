#include "tools/harmonet/Walk.h"

#include <algorithm>

namespace Tool
{

Quon::Vector3 Walk::GetPosition(long elapsedMs) const
{
    constexpr float passingDistance = 2.0F;
    const float progress =
        static_cast<float>(std::min(elapsedMs, durationMs)) / static_cast<float>(durationMs);
    return {centre.x + span * (2.0F * progress - 1.0F), centre.y, centre.z + passingDistance};
}

} // namespace Tool
