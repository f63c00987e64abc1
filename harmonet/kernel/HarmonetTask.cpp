#include "harmonet/kernel/HarmonetTask.h"

#include "harmonet/kernel/SndKernel.h"

namespace Quon
{

namespace
{
constexpr float taskOrder = 7.0F;
}

HarmonetTask::HarmonetTask(SndKernel* newKernel)
    : Task(PString("HarmonetTask"), taskOrder, true)
    , kernel(newKernel)
{
}

HarmonetTask::~HarmonetTask()
{
    HarmonetTask::Done();
}

bool HarmonetTask::Init(OS* os)
{
    return Task::Init(os);
}

void HarmonetTask::Done()
{
    delete kernel;
    kernel = nullptr;
}

Task::UpdateCode HarmonetTask::Update(float seconds)
{
    if (kernel)
        kernel->Update(seconds);
    return UpdateContinue;
}

} // namespace Quon
