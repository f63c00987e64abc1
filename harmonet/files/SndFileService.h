#pragma once

#include "harmonet/Export.h"
#include "harmonet/engine/Alloc.h"

namespace Quon
{

class Options;
class SndFileCache;

/// Lets SndFile open files while no sound system runs: for tools and loaders that want sound data and no
/// sound. Whoever makes one keeps it for as long as there are readers that were opened meanwhile.
///
/// Where files can be opened already, as while the sound system runs, it changes nothing. A sound system that
/// starts while it lives takes over, and when that one ends, files can be opened no more; readers that are
/// open go on all the same. Task thread only.
class HARMONET_API SndFileService : public Allocated
{
public:
    SndFileService();
    /// The same with options for the readers that open meanwhile: "MpegStandard" (docs/formats.md). While
    /// files can be opened already, they are left aside.
    explicit SndFileService(const Options& options);
    SndFileService(const SndFileService&) = delete;
    SndFileService& operator=(const SndFileService&) = delete;
    /// Closes all files that were opened meanwhile.
    ~SndFileService();

private:
    SndFileCache* files = nullptr; ///< Owned; null where there was a list already.
};

} // namespace Quon
