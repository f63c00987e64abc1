#include "harmonet/engine/FileRoots.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <memory>
#include <string_view>

#include <sys/stat.h>

namespace Quon
{

namespace
{

/// The canonical path, or an empty text with errno telling why not.
EngineString Canonical(const char* path)
{
    const std::unique_ptr<char, void (*)(void*)> resolved(realpath(path, nullptr), std::free);
    return resolved ? EngineString(resolved.get()) : EngineString();
}

bool IsFolder(const char* path)
{
    struct stat status
    {
    };
    return stat(path, &status) == 0 && S_ISDIR(status.st_mode);
}

bool IsAbsolute(std::string_view name)
{
    const bool hasDrive = name.size() >= 2 && name[1] == ':';
    return hasDrive || name.starts_with('/');
}

bool GoesUp(std::string_view name)
{
    while (!name.empty()) {
        const std::size_t length = std::min(name.find('/'), name.size());
        if (name.substr(0, length) == "..") {
            return true;
        }
        name.remove_prefix(std::min(length + 1, name.size()));
    }
    return false;
}

File::OpenCode CodeOfError(int error)
{
    switch (error) {
    case ENOENT:
    case ENOTDIR:
        return File::NotFound;
    case EACCES:
    case EPERM:
        return File::NotReadable;
    case ENAMETOOLONG:
        return File::BadName;
    default:
        return File::SystemError;
    }
}

} // namespace

FileRoots& FileRoots::Get()
{
    static FileRoots roots;
    return roots;
}

bool FileRoots::Add(const PString& owner, const char* folder)
{
    const EngineString canonical = folder != nullptr ? Canonical(folder) : EngineString();
    if (canonical.empty() || !IsFolder(canonical.c_str())) {
        return false;
    }
    const std::lock_guard lock(mutex);
    RemoveLocked(owner);
    roots.push_back({owner, canonical == "/" ? EngineString() : canonical});
    return true;
}

void FileRoots::Remove(const PString& owner)
{
    const std::lock_guard lock(mutex);
    RemoveLocked(owner);
}

void FileRoots::RemoveLocked(const PString& owner)
{
    roots.remove_if([&owner](const Root& root) { return root.owner == owner; });
}

bool FileRoots::FindFolder(const PString& owner, EngineString& folder) const
{
    const std::lock_guard lock(mutex);
    const auto found =
        std::find_if(roots.begin(), roots.end(), [&owner](const Root& root) { return root.owner == owner; });
    if (found == roots.end()) {
        return false;
    }
    folder = found->folder;
    return true;
}

Result FileRoots::Resolve(const PString& owner, const char* name, EngineString& path) const
{
    if (name == nullptr || *name == '\0' || std::string_view(name).size() >= PATH_MAX) {
        return File::BadName;
    }
    EngineString portableName = name;
    std::replace(portableName.begin(), portableName.end(), '\\', '/');
    if (IsAbsolute(portableName) || GoesUp(portableName)) {
        return File::OutsideRoot;
    }
    EngineString root;
    if (!FindFolder(owner, root)) {
        return File::NoRoot;
    }
    root += '/';
    const EngineString resolved = Canonical((root + portableName).c_str());
    if (resolved.empty()) {
        const int error = errno;
        return IsFolder(root.c_str()) ? CodeOfError(error) : File::NoRoot;
    }
    // The name itself cannot leave the root; a symbolic link on its way can.
    if (!resolved.starts_with(root)) {
        return resolved + '/' == root ? File::NotAFile : File::OutsideRoot;
    }
    path = resolved;
    return File::Opened;
}

} // namespace Quon
