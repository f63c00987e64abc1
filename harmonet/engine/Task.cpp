#include "harmonet/engine/Task.h"

#include "harmonet/engine/TaskList.h"

namespace Quon
{

Task::Task(const PString& newName, float newOrder, bool newActive)
    : taskName(newName)
    , order(newOrder)
    , active(newActive)
{
    TaskList::Get().Enter(*this);
}

Task::~Task()
{
    // A list destroyed before its tasks has unlinked them.
    if (IsLinked()) {
        TaskList::Get().Leave(*this);
    }
}

const PString& Task::GetName() const
{
    return taskName;
}

bool Task::Init(OS*)
{
    return true;
}

void Task::Done() {}

} // namespace Quon
