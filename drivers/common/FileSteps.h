#pragma once

#include "harmonet/engine/Alloc.h"

#include <cstdint>

namespace Quon
{

class SndFile;

/// A channel's transition from one file of its queue to the next.
struct FileStep
{
    SndFile* oldFile; ///< The file that was read to its end.
    SndFile* newFile; ///< The file that is read from now on.
    std::int64_t position; ///< Sample frames of the channel's stream before the new file's first.
    std::int64_t oldEnd; ///< And before the end of the old file: fewer if effects sounded in between.
};

/// The steps of a channel that have not been reported to the library yet, oldest first.
///
/// A driver reads ahead: it steps to the next file when it reads from it and reports the step when it becomes
/// audible. In between the old file still belongs to the sound. Owned by a channel, which must lock it if it
/// is shared. Allocates only when more steps are outstanding than ever before.
class FileSteps
{
public:
    /// The steps from the oldest to the newest.
    bool IsEmpty() const { return steps.empty(); }
    const FileStep& GetOldest() const { return steps.front(); }
    auto begin() const { return steps.begin(); }
    auto end() const { return steps.end(); }
    void Add(const FileStep& step) { steps.push_back(step); }
    /// Removes the oldest step, which is being reported.
    void DropOldest();
    void Clear();

    /// Returns the file that the channel's `sndFile` must be set to when the channel is returned, so that the
    /// library finds the whole chain after it: the file before the oldest step, or `current` if there is
    /// none.
    SndFile* GetOldestFile(SndFile* current) const;

    /// The position in the stream at which the file of GetOldestFile() begins.
    std::int64_t GetReportedPosition() const { return reportedPosition; }

private:
    EngineVector<FileStep> steps;
    std::int64_t reportedPosition = 0;
};

} // namespace Quon
