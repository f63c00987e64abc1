#pragma once

#include "harmonet/engine/Alloc.h"
#include "harmonet/engine/IListNode.h"
#include "harmonet/engine/PString.h"

namespace Quon
{

class OS;

/// A piece of work that the host runs once per game frame through the TaskList. Whoever makes a task owns it.
/// All of it runs on the thread on which the host drives the list, the task thread.
class HARMONET_ENGINE_API Task : public Allocated, public IListNode
{
public:
    /// What Update() returns.
    enum UpdateCode
    {
        /// The task goes on.
        UpdateContinue = 0,
        /// The task leaves the list; it is not updated any more.
        UpdateStop = 1,
    };

    /// Enters the task in the list, from which it is updated from the list's next update on.
    ///
    /// Tasks run in ascending \p newOrder, those of equal order by age, the oldest first. A task made with
    /// \p newActive false stands in the list and is not updated until SetActive(true).
    Task(const PString& newName, float newOrder, bool newActive);
    Task(const Task&) = delete;
    Task& operator=(const Task&) = delete;

    /// Leaves the list. A task may be deleted at any moment, also by itself or another task during an update.
    virtual ~Task();

    /// The name given to the constructor.
    virtual const PString& GetName() const;

    /// For a task that has something to prepare. True on success; this one does nothing.
    virtual bool Init(OS* os);

    /// For a task that has something to give back while it lives on; this one does nothing.
    virtual void Done();

    /// Does the work. \p seconds have passed since the last call. A task that deletes itself here returns
    /// UpdateContinue.
    virtual UpdateCode Update(float seconds) = 0;

    /// Whether the list updates the task. A task that is not active keeps its place.
    void SetActive(bool newActive) { active = newActive; }
    bool IsActive() const { return active; }

    /// The time that TaskList::SetMinimumStep() holds back, in seconds: it is part of the next update.
    double GetGatheredSeconds() const { return gatheredSeconds; }

private:
    friend class TaskList;

    PString taskName;
    float order;
    bool active;
    /// Held back until this much time has gathered.
    float minimumStepSeconds = 0.0F;
    double gatheredSeconds = 0.0;
    /// The number of the list's update during which the task was made, so that it is not run in that one.
    unsigned long bornInUpdate = 0;
};

} // namespace Quon
