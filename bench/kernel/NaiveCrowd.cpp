#include "bench/kernel/NaiveCrowd.h"

namespace Bench
{

NaiveCrowd::NaiveCrowd(CrowdPlan& newPlan, int newFileCount, int newChannels)
    : plan(newPlan)
    , fileCount(newFileCount)
    , channels(newChannels)
{
    for (int i = 0; i < plan.GetCount(); ++i) {
        positions.push_back(plan.GetPlace(i).position);
    }
}

void NaiveCrowd::MoveHalf()
{
    for (std::size_t i = 0; i < positions.size(); i += 2) {
        positions[i] = plan.AnyPosition();
    }
}

void NaiveCrowd::Update()
{
    std::vector<Quon::Contender> contenders; // All are in range and settled.
    for (int i = 0; i < plan.GetCount(); ++i) {
        const Quon::Vector3& place = positions[static_cast<std::size_t>(i)];
        const float x = place.x - listenerX;
        contenders.push_back({plan.GetPlace(i).priority, x * x + place.y * place.y + place.z * place.z,
            static_cast<std::uint32_t>(i % fileCount)});
    }
    const std::size_t count = contenders.size();
    heard =
        static_cast<int>(Quon::PlainDecision(std::move(contenders), {0, count, 0}, channels).chosen.size());
}

} // namespace Bench
