#pragma once

#include "harmonet/engine/Alloc.h"
#include "harmonet/engine/IListNode.h"
#include "harmonet/engine/PString.h"

namespace Quon
{

class OS;

/// A piece of work that the host runs once per game frame through the TaskList. A task is owned by its
/// creator. All functions are called on the thread that updates the list, the task thread.
class HARMONET_ENGINE_API Task : public Allocated, public IListNode
{
public:
    /// What Update() returns.
    enum UpdateCode
    {
        /// The task continues.
        UpdateContinue = 0,
        /// The task is removed from the list and not updated any more.
        UpdateStop = 1,
    };

    /// Adds the task to the list; it is first updated in the list's next update.
    ///
    /// Tasks run in ascending \p newOrder; among equal values, older tasks run first. A task constructed with
    /// \p newActive false is in the list but is not updated until SetActive(true).
    Task(const PString& newName, float newOrder, bool newActive);
    Task(const Task&) = delete;
    Task& operator=(const Task&) = delete;

    /// Removes the task from the list. A task may be deleted at any time, even by itself or another task
    /// during an update.
    virtual ~Task();

    /// The name given to the constructor.
    virtual const PString& GetName() const;

    /// For tasks that need initialisation. Returns true on success; the default does nothing.
    virtual bool Init(OS* os);

    /// For tasks that release something before their destruction; the default does nothing.
    virtual void Done();

    /// Does the work. \p seconds is the time since the last call. A task that deletes itself here must return
    /// UpdateContinue.
    virtual UpdateCode Update(float seconds) = 0;

    /// Whether the list updates the task. A task that is not active keeps its place.
    void SetActive(bool newActive) { active = newActive; }
    bool IsActive() const { return active; }

    /// The time that TaskList::SetMinimumStep() has deferred, in seconds: it becomes part of the next update.
    double GetGatheredSeconds() const { return gatheredSeconds; }

private:
    friend class TaskList;

    PString taskName;
    float order;
    bool active;
    /// Updates are deferred until this much time has accumulated.
    float minimumStepSeconds = 0.0F;
    double gatheredSeconds = 0.0;
    /// The number of the list's update during which the task was created, so that it does not run in that
    /// one.
    unsigned long bornInUpdate = 0;
};

} // namespace Quon
