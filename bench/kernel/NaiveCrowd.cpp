#include "bench/kernel/NaiveCrowd.h"

#include "bench/kernel/BenchHost.h"
#include "harmonet/instances/Sound.h"

namespace Bench
{

NaiveCrowd::NaiveCrowd(CrowdPlan& newPlan, int fileCount, int channels)
    : plan(newPlan)
{
    for (int i = 0; i < fileCount; ++i) {
        const std::string name = std::to_string(i) + ".wav";
        model.files[name] = {.name = name, .rateHz = WaveFolder::rateHz, .frames = WaveFolder::sampleFrames};
    }
    model.SetLimit(channels);
    model.ActivateListener({0.0F, 0.0F, 0.0F});
    for (int i = 0; i < plan.GetCount(); ++i) {
        const CrowdPlan::Place& place = plan.GetPlace(i);
        const int id = model.New3D(std::to_string(i % fileCount) + ".wav");
        model.SetSoundPosition(id, place.position);
        model.SetSoundPriority(id, place.priority);
        model.SetSoundMinMaxDistance(id, CrowdPlan::minDistance, CrowdPlan::maxDistance, false);
        model.StartSound(id, Quon::Sound::StartLooping);
    }
}

void NaiveCrowd::MoveHalf()
{
    for (int id = 1; id <= plan.GetCount(); id += 2)
        model.SetSoundPosition(id, plan.AnyPosition());
}

void NaiveCrowd::Update()
{
    model.Update(BenchHost::frameSeconds);
    model.log.clear();
}

} // namespace Bench
