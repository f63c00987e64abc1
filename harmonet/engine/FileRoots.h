#pragma once

#include "harmonet/engine/File.h"

#include <list>
#include <mutex>

/// The root folders that the host has given, and the one place where a file name becomes a path of the
/// operating system. Internal to the engine; any thread may call it.

namespace Quon
{

class FileRoots
{
public:
    static FileRoots& Get();

    /// False, and no change, if there is no such folder.
    bool Add(const PString& owner, const char* folder);
    void Remove(const PString& owner);

    /// Finds the path of the file, with all symbolic links followed, and makes sure that it lies below the
    /// owner's root. The result is one of File::OpenCode; the path is set with 0 only.
    Result Resolve(const PString& owner, const char* name, EngineString& path) const;

private:
    struct Root
    {
        PString owner;
        /// As NativePath::FindFolder() gives it.
        EngineString folder;
    };

    void RemoveLocked(const PString& owner);
    bool FindFolder(const PString& owner, EngineString& folder) const;

    /// Guards the list.
    mutable std::mutex mutex;
    std::list<Root, EngineAllocator<Root>> roots;
};

} // namespace Quon
