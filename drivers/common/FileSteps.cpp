#include "drivers/common/FileSteps.h"

namespace Quon
{

SndFile* FileSteps::GetOldestFile(SndFile* current) const
{
    return steps.empty() ? current : steps.front().oldFile;
}

} // namespace Quon
