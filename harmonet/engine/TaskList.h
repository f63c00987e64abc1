#pragma once

#include "harmonet/engine/Alloc.h"
#include "harmonet/engine/IListNode.h"
#include "harmonet/engine/PString.h"

#include <list>

namespace Quon
{

class OS;
class Task;

/// The list of all tasks of the process. The host calls Update() once per game frame. The thread that does so
/// is the task thread; all functions here must be called on it.
class HARMONET_ENGINE_API TaskList
{
public:
    /// The only list, created at the first call.
    static TaskList& Get();

    /// Updates the active tasks in their order, each with the seconds since its last update.
    ///
    /// Tasks may be created and deleted during the update: a new one is first updated in the next update. A
    /// recursive call does nothing. Negative and non-finite seconds count as 0.
    void Update(float seconds);

    /// Defers the updates of present and future tasks of that name: their time is accumulated until it is at
    /// least \p seconds, and is then passed in one update. 0 or less ends that. For a task that counts whole
    /// milliseconds, choose a step slightly longer than the time it waits for.
    void SetMinimumStep(const PString& taskName, float seconds);

    /// Calls Task::Init() on all tasks in their order. Returns true if all calls did.
    bool Init(OS* os);

    /// Calls Task::Done() on all tasks in their order, as a host does before it ends. The tasks stay in the
    /// list.
    void Done();

private:
    friend class Task;

    struct MinimumStep
    {
        PString taskName;
        float seconds;
    };

    TaskList();
    ~TaskList();
    TaskList(const TaskList&) = delete;
    TaskList& operator=(const TaskList&) = delete;

    void Enter(Task& task);
    void Leave(Task& task);
    void UpdateTask(Task& task, float seconds);
    template<class Visitor>
    void Walk(Visitor visit);

    IListNode head;
    /// The next node of the running iteration; a task that is removed advances it. Null outside an iteration.
    IListNode* upcoming = nullptr;
    std::list<MinimumStep, EngineAllocator<MinimumStep>> minimumSteps;
    unsigned long updateNumber = 0;
};

} // namespace Quon
