#pragma once

#include "bench/kernel/BenchHost.h"
#include "bench/kernel/CrowdPlan.h"
#include "harmonet/instances/Sound.h"

namespace Bench
{

/// The crowd of a plan in the real sound system: looping positional sounds in one group, all attached to one
/// root node.
class Crowd
{
public:
    Crowd(CrowdPlan& newPlan, const WaveFolder& newFiles, BenchHost& newHost);

    /// Starts further sounds of the plan until `count` are running.
    void Grow(int count);
    /// Starts a sound along a line, less important than the others.
    void AddLine();
    void MoveHalf();
    int CountHeard() const;

private:
    void Start(const CrowdPlan::Place& place);

    CrowdPlan& plan;
    const WaveFolder& files;
    BenchHost& host;
    Quon::Particle world;
    Quon::Sound group;
    std::vector<int> ids;
};

} // namespace Bench
