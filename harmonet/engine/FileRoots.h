#pragma once

#include "harmonet/engine/File.h"
#include "harmonet/engine/FileSource.h"

#include <list>
#include <memory>
#include <mutex>

namespace Quon
{

/// The roots that the host has given, and the one place where a file name becomes a path of the operating
/// system, or a name in a source of the host's. Internal to the engine; any thread may call it.
class FileRoots
{
public:
    /// Where a file is.
    struct Place
    {
        EngineString path; ///< Of the operating system, or in the source.
        std::shared_ptr<FileSource> source; ///< Null for a file of the operating system.
    };

    static FileRoots& Get();

    /// False, and no change, if there is no such folder.
    bool Add(const PString& owner, const char* folder);
    /// False, and no change, for null.
    bool Add(const PString& owner, std::shared_ptr<FileSource> source);
    void Remove(const PString& owner);

    /// Finds the path of the file, with all symbolic links followed, and makes sure that it lies below the
    /// owner's root. Of a source the name alone is looked at. The result is one of File::OpenCode; the place
    /// is set with 0 only.
    Result Resolve(const PString& owner, const char* name, Place& place) const;

    /// The same for a folder; null, "" and "." are the root itself. `plainName` is its name from the root on,
    /// with `/` between its parts, and empty for the root.
    Result ResolveFolder(
        const PString& owner, const char* folder, Place& place, EngineString& plainName) const;

private:
    struct Root
    {
        PString owner;
        /// As NativePath::FindFolder() gives it; empty for a source.
        EngineString folder;
        std::shared_ptr<FileSource> source;
    };

    void RemoveLocked(const PString& owner);
    bool Find(const PString& owner, Root& root) const;

    /// Guards the list.
    mutable std::mutex mutex;
    std::list<Root, EngineAllocator<Root>> roots;
};

} // namespace Quon
