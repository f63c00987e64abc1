#pragma once

#include "harmonet/Export.h"
#include "harmonet/engine/Alloc.h"

namespace Quon
{

class Options;
class SndFileCache;

/// Lets SndFile open files while no sound system runs, for tools and loaders that need sound data but no
/// output. The object must outlive all readers that were opened through it.
///
/// If files can already be opened, for example because the sound system runs, it has no effect. A sound
/// system that starts during its lifetime replaces it, and after that system has ended no files can be
/// opened; open readers continue to work. Task thread only.
class HARMONET_API SndFileService : public Allocated
{
public:
    SndFileService();
    /// Same as the default constructor, with options for the readers that are opened: "MpegStandard"
    /// (docs/formats.md). The options are ignored if files can already be opened.
    explicit SndFileService(const Options& options);
    SndFileService(const SndFileService&) = delete;
    SndFileService& operator=(const SndFileService&) = delete;
    /// Closes all files that were opened through it.
    ~SndFileService();

private:
    SndFileCache* files = nullptr; ///< Owned; null if a list existed already.
};

} // namespace Quon
