#include "harmonet/kernel/HarmonetTask.h"

#include "harmonet/kernel/SndKernel.h"

#include <utility>

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
    if (kernel) {
        kernel->SetTask(this);
    }
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
    if (!kernel || kernel->IsBusy()) {
        return;
    }
    delete std::exchange(kernel, nullptr);
}

Task::UpdateCode HarmonetTask::Update(float seconds)
{
    if (kernel) {
        kernel->Update(seconds);
    }
    return UpdateContinue;
}

} // namespace Quon
