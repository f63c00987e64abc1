#pragma once

#include "bench/kernel/CrowdPlan.h"
#include "tests/kernel/UpdateModel.h"

namespace Bench
{

/// The crowd of a plan in the plain form of the kernel's rules by which the tests judge the kernel: what an
/// update costs when nothing has been done about it.
class NaiveCrowd
{
public:
    NaiveCrowd(CrowdPlan& newPlan, int fileCount, int channels);

    void MoveHalf();
    void MoveListener(float x) { model.MoveListener({x, 0.0F, 0.0F}); }
    void Update();
    int CountHeard() const { return static_cast<int>(model.GetPlaying().size()); }

private:
    CrowdPlan& plan;
    Quon::UpdateModel model{0};
};

} // namespace Bench
