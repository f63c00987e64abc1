#pragma once

#include "harmonet/engine/File.h"
#include "harmonet/engine/FileSource.h"

#include <list>
#include <memory>
#include <mutex>

namespace Quon
{

/// The roots that the host has added, and the only place where a file name is resolved to a native path or to
/// a name in a custom source. Internal to the engine; any thread may call it.
class FileRoots
{
public:
    /// The location of a file.
    struct Place
    {
        EngineString path; ///< A native path, or the name in the source.
        std::shared_ptr<FileSource> source; ///< Null for a native file.
    };

    static FileRoots& Get();

    /// Returns false and changes nothing if there is no such folder.
    bool Add(const PString& owner, const char* folder);
    /// Returns false and changes nothing for null.
    bool Add(const PString& owner, std::shared_ptr<FileSource> source);
    void Remove(const PString& owner);

    /// Finds the path of the file, with all symbolic links resolved, and ensures that it is below the owner's
    /// root. For a source only the name is checked. The result is one of File::OpenCode; the place is set on
    /// 0 only.
    Result Resolve(const PString& owner, const char* name, Place& place) const;

    /// The same for a folder; null, "" and "." are the root itself. `plainName` is its name relative to the
    /// root, with `/` between its parts, and empty for the root.
    Result ResolveFolder(
        const PString& owner, const char* folder, Place& place, EngineString& plainName) const;

private:
    struct Root
    {
        PString owner;
        /// As returned by NativePath::FindFolder(); empty for a source.
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
