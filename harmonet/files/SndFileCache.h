#pragma once

#include "harmonet/Export.h"
#include "harmonet/engine/Alloc.h"
#include "harmonet/engine/IListNode.h"
#include "harmonet/engine/PString.h"

namespace Quon
{

class Options;
class SndFileHandle;

/// The list of open files: one SndFileHandle for each file in use, so that all readers streaming from one
/// file share one system handle. The kernel owns one such list. Task thread only.
class HARMONET_INTERNAL_API SndFileCache : public Allocated
{
public:
    SndFileCache() = default;
    SndFileCache(const SndFileCache&) = delete;
    SndFileCache& operator=(const SndFileCache&) = delete;
    /// Same as ReleaseAll().
    ~SndFileCache();

    /// Returns the handle of that file, opened if necessary, and adds a use; null if it cannot be opened.
    SndFileHandle* Acquire(const PString& substName, const PString& fileName);
    /// Releases one use; the last one closes the file. A handle of another list is returned to that list,
    /// since a reader may have been opened before this list was set. Null is ignored.
    void Release(SndFileHandle* handle);
    /// Closes every file, whatever its uses: for shutdown, after all sounds have been deleted.
    void ReleaseAll();

    int GetCount() const { return count; }

    /// Reads the option "MpegStandard", 0 or 1; any other value means 0, the default.
    void ReadOptions(const Options& options);
    /// Sets whether readers of MPEG audio opened while this list is in use decode by the standards where this
    /// library has its own rules. Readers that are already open are not changed.
    void SetMpegStandard(bool on) { mpegStandard = on; }
    bool IsMpegStandard() const { return mpegStandard; }

private:
    SndFileHandle* Find(const PString& substName, const PString& fileName);
    void Destroy(SndFileHandle* handle);

    IListNode handles; ///< The files in order of their opening.
    int count = 0;
    bool mpegStandard = false;
};

} // namespace Quon
