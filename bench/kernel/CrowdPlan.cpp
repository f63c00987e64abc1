#include "bench/kernel/CrowdPlan.h"

#include <algorithm>

namespace Bench
{

namespace
{

float DistSqr(const Quon::Vector3& place)
{
    return place.x * place.x + place.y * place.y + place.z * place.z;
}

} // namespace

CrowdPlan::CrowdPlan(int count)
{
    constexpr int priorities = 3;
    for (int i = 0; i < count; ++i) {
        places.push_back({static_cast<int>(random() % priorities), AnyPosition()});
    }
    std::ranges::sort(places, [](const Place& left, const Place& right) {
        return left.priority != right.priority ? left.priority > right.priority
                                               : DistSqr(left.position) < DistSqr(right.position);
    });
}

Quon::Vector3 CrowdPlan::AnyPosition()
{
    std::uniform_real_distribution<float> coordinate(-worldSize, worldSize);
    const float x = coordinate(random);
    return {x, 0.0F, coordinate(random)};
}

} // namespace Bench
