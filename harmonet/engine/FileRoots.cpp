#include "harmonet/engine/FileRoots.h"

#include "harmonet/engine/Messages.h"
#include "harmonet/engine/NativePath.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace Quon
{

namespace
{

/// Normalises a name for sources: parts separated by `/`, without empty and `.` parts.
EngineString PlainName(std::string_view name)
{
    EngineString plain;
    while (!name.empty()) {
        const std::size_t length = std::min(name.find_first_of("/\\"), name.size());
        const std::string_view part = name.substr(0, length);
        if (!part.empty() && part != ".") {
            plain.append(plain.empty() ? "" : "/").append(part);
        }
        name.remove_prefix(std::min(length + 1, name.size()));
    }
    return plain;
}

} // namespace

FileRoots& FileRoots::Get()
{
    static FileRoots roots;
    return roots;
}

bool FileRoots::Add(const PString& owner, const char* folder)
{
    const EngineString canonical = folder != nullptr ? NativePath::FindFolder(folder) : EngineString();
    if (canonical.empty()) {
        Report(MessageLevel::Error, "folder '", folder != nullptr ? folder : "",
            "' cannot be a root: it does not exist");
        return false;
    }
    const std::lock_guard lock(mutex);
    RemoveLocked(owner);
    roots.push_back({owner, canonical, nullptr});
    return true;
}

bool FileRoots::Add(const PString& owner, std::shared_ptr<FileSource> source)
{
    if (source == nullptr) {
        return false;
    }
    const std::lock_guard lock(mutex);
    RemoveLocked(owner);
    roots.push_back({owner, EngineString(), std::move(source)});
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

bool FileRoots::Find(const PString& owner, Root& root) const
{
    const std::lock_guard lock(mutex);
    const auto found = std::find_if(
        roots.begin(), roots.end(), [&owner](const Root& known) { return known.owner == owner; });
    if (found == roots.end()) {
        return false;
    }
    root = *found;
    return true;
}

Result FileRoots::Resolve(const PString& owner, const char* name, Place& place) const
{
    if (name == nullptr || *name == '\0') {
        return File::BadName;
    }
    const Result checked = NativePath::CheckName(name);
    if (!checked.IsOk()) {
        return checked;
    }
    Root root;
    if (!Find(owner, root)) {
        return File::NoRoot;
    }
    if (root.source == nullptr) {
        return NativePath::Resolve(root.folder, name, place.path);
    }
    place.path = PlainName(name);
    place.source = std::move(root.source);
    return place.path.empty() ? File::NotAFile : File::Opened;
}

Result FileRoots::ResolveFolder(
    const PString& owner, const char* folder, Place& place, EngineString& plainName) const
{
    plainName.clear();
    if (folder != nullptr && *folder != '\0') {
        const Result checked = NativePath::CheckName(folder);
        if (!checked.IsOk()) {
            return checked;
        }
        plainName = PlainName(folder);
    }
    Root root;
    if (!Find(owner, root)) {
        return File::NoRoot;
    }
    place.path = root.source != nullptr ? plainName : root.folder;
    place.source = std::move(root.source);
    const bool isBelow = place.source == nullptr && !plainName.empty();
    return isBelow ? NativePath::Resolve(root.folder, plainName, place.path) : Result(File::Opened);
}

} // namespace Quon
