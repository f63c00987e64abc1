#pragma once

#include "harmonet/Export.h"
#include "harmonet/engine/Alloc.h"
#include "harmonet/engine/IListNode.h"
#include "harmonet/engine/PString.h"

namespace Quon
{

class Options;
class SndFileHandle;

/// The list of open files: one SndFileHandle for each file in use, so that all readers that stream from one
/// file share one handle of the operating system. The kernel owns one such list. Task thread only.
class HARMONET_INTERNAL_API SndFileCache : public Allocated
{
public:
    SndFileCache() = default;
    SndFileCache(const SndFileCache&) = delete;
    SndFileCache& operator=(const SndFileCache&) = delete;
    /// As ReleaseAll().
    ~SndFileCache();

    /// The handle of that file, opened if need be, with one use more; null if it cannot be opened.
    SndFileHandle* Acquire(const PString& substName, const PString& fileName);
    /// Gives one use back; the last one closes the file. A handle of another list goes back to that list: a
    /// reader may have been opened before this list took over. Null is ignored.
    void Release(SndFileHandle* handle);
    /// Closes every file, whatever its uses: for shutdown, after all sounds are gone.
    void ReleaseAll();

    int GetCount() const { return count; }

    /// Takes the option "MpegStandard", 0 or 1; anything else is 0, the default.
    void ReadOptions(const Options& options);
    /// Whether readers of MPEG audio that open while this list is in use decode by the standards where this
    /// library has rules of its own. Readers that are open already go on as they were opened.
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
