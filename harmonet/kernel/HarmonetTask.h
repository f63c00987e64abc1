#pragma once

#include "harmonet/Export.h"
#include "harmonet/engine/Task.h"

namespace Quon
{

class SndKernel;

/// The engine task that runs the sound system: once per game frame it passes the elapsed time to the kernel,
/// which it owns. Created by SoundSystem::Init(); its name in the task list is "HarmonetTask".
class HARMONET_API HarmonetTask : public Task
{
public:
    /// Takes ownership of the kernel.
    explicit HarmonetTask(SndKernel* newKernel);
    /// Same as Done(), then removes the task from the task list.
    ~HarmonetTask() override;

    bool Init(OS* os) override;
    /// Stops the sound system. The task remains in the list and does nothing. Does nothing when called from
    /// an observer's handler.
    void Done() override;
    UpdateCode Update(float seconds) override;

private:
    SndKernel* kernel;
};

} // namespace Quon
