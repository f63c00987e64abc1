#pragma once

#include "harmonet/Export.h"
#include "harmonet/engine/Alloc.h"
#include "harmonet/engine/File.h"
#include "harmonet/engine/IListNode.h"
#include "harmonet/engine/PString.h"
#include "harmonet/engine/SyncObject.h"

namespace Quon
{

class SndFileCache;

/// One open file shared by any number of readers. Created and counted by SndFileCache, on the task thread.
class HARMONET_INTERNAL_API SndFileHandle : public Allocated, private IListNode
{
public:
    /// Closes the file.
    ~SndFileHandle();
    SndFileHandle(const SndFileHandle&) = delete;
    SndFileHandle& operator=(const SndFileHandle&) = delete;

    /// Reads up to `bytes` bytes at `offset` from the start of the file, and returns the number read; 0
    /// beyond the end of the file. Thread-safe: a seek and its read are one step under the handle's mutex.
    int ReadAt(void* buffer, int bytes, unsigned long offset);

    /// The file itself, for its length.
    File& GetFile() { return file; }
    const PString& GetFileName() const { return fileName; }
    const PString& GetSubstName() const { return substName; }
    int GetUseCount() const { return useCount; }

private:
    friend class SndFileCache;

    SndFileHandle(SndFileCache& newList, const PString& newSubstName, const PString& newFileName);

    SndFileCache& list; ///< The list that contains this handle.
    PString fileName;
    PString foldedName; ///< Key for look-ups in the list.
    PString substName;
    File file;
    int useCount = 1;
    Mutex mutex; ///< Makes a seek of `file` and the following read atomic.
};

} // namespace Quon
