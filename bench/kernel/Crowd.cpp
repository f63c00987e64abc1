#include "bench/kernel/Crowd.h"

#include "harmonet/instances/Snd3D.h"

namespace Bench
{

using namespace Quon;

Crowd::Crowd(CrowdPlan& newPlan, const WaveFolder& newFiles, BenchHost& newHost)
    : plan(newPlan)
    , files(newFiles)
    , host(newHost)
{
    // The benchmark's own memory for a sound must not count as the sound's.
    ids.reserve(static_cast<std::size_t>(plan.GetCount()));
}

void Crowd::Grow(int count)
{
    constexpr int soundsInUpdate = 500;
    while (static_cast<int>(ids.size()) < count) {
        Start(plan.GetPlace(static_cast<int>(ids.size())));
        if (ids.size() % soundsInUpdate == 0) {
            host.Update();
        }
    }
    host.Update();
}

void Crowd::Start(const CrowdPlan::Place& place)
{
    const int id = group.New3DSound(files.GetName(static_cast<int>(ids.size())), nullptr);
    group.SetSoundPosition(id, place.position);
    group.SetSoundPriority(id, place.priority);
    group.SetSoundMinMaxDistance(id, CrowdPlan::minDistance, CrowdPlan::maxDistance, false);
    group.AttachSound(id, &world, PString());
    group.StartSound(id, Sound::StartLooping);
    ids.push_back(id);
}

void Crowd::AddLine()
{
    const Vector3 points[] = {plan.AnyPosition(), plan.AnyPosition()};
    const int id = group.New3DSound(points, 2, files.GetName(0), nullptr, 0, 0.0F);
    group.SetSoundPriority(id, -1);
    group.StartSound(id, Sound::StartLooping);
}

void Crowd::MoveHalf()
{
    for (std::size_t i = 0; i < ids.size(); i += 2) {
        group.SetSoundPosition(ids[i], plan.AnyPosition());
    }
}

int Crowd::CountHeard() const
{
    constexpr int soundNode = 16;
    int heard = 0;
    for (const Particle* node = world.GetFirstChild(); node != nullptr; node = node->GetNextSibling()) {
        if (node->GetID() == soundNode && static_cast<const Snd3D*>(node)->GetSndChannel() != nullptr) {
            ++heard;
        }
    }
    return heard;
}

} // namespace Bench
