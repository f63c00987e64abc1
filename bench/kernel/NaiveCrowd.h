#pragma once

#include "bench/kernel/CrowdPlan.h"
#include "tests/kernel/PlainDecision.h"

namespace Bench
{

/// The crowd of a plan, and who of it is heard, decided in the plainest form of the kernel's rules: what that
/// costs when nothing has been done about it. All sounds have run without a channel for long.
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
