#include "harmonet/engine/FileRoots.h"

#include "harmonet/engine/NativePath.h"

#include <algorithm>
#include <string_view>

namespace Quon
{

FileRoots& FileRoots::Get()
{
    static FileRoots roots;
    return roots;
}

bool FileRoots::Add(const PString& owner, const char* folder)
{
    const EngineString canonical = folder != nullptr ? NativePath::FindFolder(folder) : EngineString();
    if (canonical.empty()) {
        return false;
    }
    const std::lock_guard lock(mutex);
    RemoveLocked(owner);
    roots.push_back({owner, canonical});
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
    if (name == nullptr || *name == '\0') {
        return File::BadName;
    }
    const Result checked = NativePath::CheckName(name);
    if (!checked.IsOk()) {
        return checked;
    }
    EngineString root;
    return FindFolder(owner, root) ? NativePath::Resolve(root, name, path) : Result(File::NoRoot);
}

} // namespace Quon
