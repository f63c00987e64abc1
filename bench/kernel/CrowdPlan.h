#pragma once

#include "harmonet/engine/Vector.h"

#include <random>
#include <vector>

namespace Bench
{

/// Where the sounds of a crowd stand and how important they are, the same at each run: around the origin,
/// where the listener stands while they are started.
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
    /// The most important first: in this order a new sound comes to stand near the end of its list, and the
    /// start takes no time.
    const Place& GetPlace(int index) const { return places[static_cast<std::size_t>(index)]; }
    /// Anywhere in the world, for a sound that moves.
    Quon::Vector3 AnyPosition();

private:
    std::mt19937 random{1};
    std::vector<Place> places;
};

} // namespace Bench
