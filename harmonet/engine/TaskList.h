#pragma once

#include "harmonet/engine/Alloc.h"
#include "harmonet/engine/IListNode.h"
#include "harmonet/engine/PString.h"

#include <list>

namespace Quon
{

class OS;
class Task;

/// The one list of all tasks of the process. The host calls Update() once per game frame; the thread on which
/// it does so is the task thread, and everything here belongs to it.
class HARMONET_ENGINE_API TaskList
{
public:
    /// The one list, made at the first call.
    static TaskList& Get();

    /// Updates the active tasks in their order, each with the seconds since its last update.
    ///
    /// Tasks may be made and deleted during the update: a new one is first updated the next time, one that is
    /// gone is not. A call from inside an update does nothing. Negative and non-finite seconds count as 0.
    void Update(float seconds);

    /// Holds the tasks of that name back, those there are and those to come: their seconds are gathered until
    /// at least \p seconds have come together, and are then passed on in one update. 0 or less ends that. A
    /// task that counts whole milliseconds of its own wants a step somewhat longer than what it waits for.
    void SetMinimumStep(const PString& taskName, float seconds);

    /// Calls Task::Init() on all tasks in their order. True if each gave true.
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
    /// The node that the running walk goes to next; a task that leaves moves it on. Null outside a walk.
    IListNode* upcoming = nullptr;
    std::list<MinimumStep, EngineAllocator<MinimumStep>> minimumSteps;
    unsigned long updateNumber = 0;
};

} // namespace Quon
