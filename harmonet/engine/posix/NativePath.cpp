#include "harmonet/engine/NativePath.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <memory>

#include <sys/stat.h>

namespace Quon::NativePath
{

namespace
{

/// Returns the canonical path, or an empty text with the reason in errno.
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

EngineString Portable(std::string_view name)
{
    EngineString portable(name);
    std::replace(portable.begin(), portable.end(), '\\', '/');
    return portable;
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

EngineString FindFolder(const char* folder)
{
    const EngineString canonical = Canonical(folder);
    return IsFolder(canonical.c_str()) ? canonical : EngineString();
}

Result CheckName(std::string_view name)
{
    if (name.size() >= PATH_MAX) {
        return File::BadName;
    }
    const EngineString portable = Portable(name);
    return IsAbsolute(portable) || GoesUp(portable) ? File::OutsideRoot : File::Opened;
}

Result Resolve(const EngineString& root, std::string_view name, EngineString& path)
{
    const EngineString inside = root.ends_with('/') ? root : root + '/';
    const EngineString resolved = Canonical((inside + Portable(name)).c_str());
    if (resolved.empty()) {
        const int error = errno;
        return IsFolder(inside.c_str()) ? CodeOfError(error) : File::NoRoot;
    }
    // The name itself cannot leave the root, but a symbolic link in the path can.
    if (!resolved.starts_with(inside)) {
        return resolved == root ? File::NotAFile : File::OutsideRoot;
    }
    path = resolved;
    return File::Opened;
}

bool FoldName(std::string_view, EngineString&)
{
    return false;
}

} // namespace Quon::NativePath
