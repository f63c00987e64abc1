#include "drivers/common/FileSteps.h"

namespace Quon
{

void FileSteps::DropOldest()
{
    reportedPosition = steps.front().position;
    steps.erase(steps.begin());
}

void FileSteps::Clear()
{
    steps.clear();
    reportedPosition = 0;
}

SndFile* FileSteps::GetOldestFile(SndFile* current) const
{
    return steps.empty() ? current : steps.front().oldFile;
}

} // namespace Quon
