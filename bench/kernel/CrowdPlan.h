#pragma once

#include "harmonet/engine/Vector.h"

#include <random>
#include <vector>

namespace Bench
{

/// The positions and priorities of the sounds of a crowd, the same in each run. The positions are around the
/// origin, where the listener is while the sounds start.
class CrowdPlan
{
public:
    static constexpr float worldSize = 400.0F;
    static constexpr float minDistance = 1.0F;
    static constexpr float maxDistance = 2.0F * worldSize;

    struct Place
    {
        int priority;
        Quon::Vector3 position;
    };

    explicit CrowdPlan(int count);

    int GetCount() const { return static_cast<int>(places.size()); }
    /// The most important first. In this order a new sound is inserted near the end of its list, which keeps
    /// starting fast.
    const Place& GetPlace(int index) const { return places[static_cast<std::size_t>(index)]; }
    /// Returns a random position in the world, for a sound that moves.
    Quon::Vector3 AnyPosition();

private:
    std::mt19937 random{1};
    std::vector<Place> places;
};

} // namespace Bench
