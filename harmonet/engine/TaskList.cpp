#include "harmonet/engine/TaskList.h"

#include "harmonet/engine/Task.h"

#include <algorithm>
#include <cmath>

namespace Quon
{

TaskList& TaskList::Get()
{
    static TaskList list;
    return list;
}

TaskList::TaskList() = default;

TaskList::~TaskList()
{
    while (head.IsLinked()) {
        head.next->Unlink();
    }
}

/// Visits the tasks in their order. The visitor may remove any task from the list and add new ones.
template<class Visitor>
void TaskList::Walk(Visitor visit)
{
    if (upcoming != nullptr) {
        return;
    }
    // An exception must not leave the list in the state of a running iteration.
    struct Finish
    {
        IListNode*& upcoming;
        ~Finish() { upcoming = nullptr; }
    } const finish{upcoming};

    upcoming = head.next;
    while (upcoming != &head) {
        Task& task = static_cast<Task&>(*upcoming);
        upcoming = upcoming->next;
        visit(task);
    }
}

void TaskList::Update(float seconds)
{
    const float passed = std::isfinite(seconds) ? std::max(seconds, 0.0F) : 0.0F;
    if (upcoming == nullptr) {
        ++updateNumber;
    }
    Walk([this, passed](Task& task) {
        if (task.active && task.bornInUpdate != updateNumber) {
            UpdateTask(task, passed);
        }
    });
}

void TaskList::UpdateTask(Task& task, float seconds)
{
    task.gatheredSeconds += seconds;
    if (task.gatheredSeconds < task.minimumStepSeconds) {
        return;
    }
    // The rounding error is kept for the next update, so that no time is lost over a long run.
    const float step = static_cast<float>(task.gatheredSeconds);
    task.gatheredSeconds -= step;
    if (task.Update(step) == Task::UpdateStop) {
        Leave(task);
    }
}

void TaskList::SetMinimumStep(const PString& taskName, float seconds)
{
    minimumSteps.remove_if([&taskName](const MinimumStep& step) { return step.taskName == taskName; });
    if (seconds > 0.0F) {
        minimumSteps.push_back({taskName, seconds});
    }
    for (IListNode* node = head.next; node != &head; node = node->next) {
        Task& task = static_cast<Task&>(*node);
        if (task.taskName == taskName) {
            task.minimumStepSeconds = std::max(seconds, 0.0F);
        }
    }
}

bool TaskList::Init(OS* os)
{
    bool allReady = true;
    Walk([os, &allReady](Task& task) { allReady = task.Init(os) && allReady; });
    return allReady;
}

void TaskList::Done()
{
    Walk([](Task& task) { task.Done(); });
}

void TaskList::Enter(Task& task)
{
    // From the end: the new task is inserted after those of equal order.
    IListNode* before = head.previous;
    while (before != &head && static_cast<Task*>(before)->order > task.order) {
        before = before->previous;
    }
    task.LinkBefore(*before->next);
    if (upcoming != nullptr) {
        task.bornInUpdate = updateNumber;
    }
    for (const MinimumStep& step : minimumSteps) {
        if (step.taskName == task.taskName) {
            task.minimumStepSeconds = step.seconds;
        }
    }
}

void TaskList::Leave(Task& task)
{
    if (upcoming == &task) {
        upcoming = task.next;
    }
    task.Unlink();
}

} // namespace Quon
