#pragma once

#include "bench/kernel/CrowdPlan.h"
#include "tests/voices/PlainDecision.h"

namespace Bench
{

/// The crowd of a plan, with a naive implementation of the kernel's rules for who is heard: the cost without
/// optimisation. All sounds have been virtual for a long time.
class NaiveCrowd
{
public:
    NaiveCrowd(CrowdPlan& newPlan, int newFileCount, int newChannels);

    void MoveHalf();
    void MoveListener(float x) { listenerX = x; }
    void Update();
    int CountHeard() const { return heard; }

private:
    CrowdPlan& plan;
    int fileCount;
    int channels;
    std::vector<Quon::Vector3> positions;
    float listenerX = 0.0F;
    int heard = 0;
};

} // namespace Bench
