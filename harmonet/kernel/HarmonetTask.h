#pragma once

#include "harmonet/Export.h"
#include "harmonet/engine/Task.h"

namespace Quon
{

class SndKernel;

/// The engine's task that keeps the sound system running: once per game frame it hands the time on to the
/// kernel, which it owns. Made by SoundSystem::Init(); its name in the task list is "HarmonetTask".
class HARMONET_API HarmonetTask : public Task
{
public:
    /// Takes over the kernel.
    explicit HarmonetTask(SndKernel* newKernel);
    /// As Done(), then leaves the task list.
    ~HarmonetTask() override;

    bool Init(OS* os) override;
    /// Stops the sound system. The task stays and does nothing. Inside an observer's handler it does nothing.
    void Done() override;
    UpdateCode Update(float seconds) override;

private:
    SndKernel* kernel;
};

} // namespace Quon
