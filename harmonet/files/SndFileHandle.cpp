#include "harmonet/files/SndFileHandle.h"

#include <limits>

namespace Quon
{

SndFileHandle::SndFileHandle(SndFileCache& newList, const PString& newSubstName, const PString& newFileName)
    : list(newList)
    , fileName(newFileName)
    , foldedName(File::FoldName(newFileName))
    , substName(newSubstName)
    , mutex(false, nullptr)
{
}

SndFileHandle::~SndFileHandle()
{
    file.Close();
}

int SndFileHandle::ReadAt(void* buffer, int bytes, unsigned long offset)
{
    if (bytes <= 0 || offset > static_cast<unsigned long>(std::numeric_limits<long>::max())) {
        return 0;
    }
    const SyncLock lock(mutex);
    if (file.Seek(static_cast<long>(offset), FileSeek::Start) != offset) {
        return 0;
    }
    return static_cast<int>(file.Read(buffer, static_cast<unsigned long>(bytes), 1));
}

} // namespace Quon
