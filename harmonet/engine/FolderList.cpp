#include "harmonet/engine/FolderList.h"

#include <filesystem>
#include <string>

namespace Quon::FolderList
{

namespace
{

namespace fs = std::filesystem;

// If links to folders cannot be distinguished from folders, a link to a parent ends here.
constexpr int maxDepth = 32;

fs::path ToPath(const EngineString& text)
{
    return {std::u8string(text.begin(), text.end())};
}

Result ToCode(const std::error_code& error)
{
    if (error == std::errc::no_such_file_or_directory) {
        return File::NotFound;
    }
    if (error == std::errc::not_a_directory) {
        return File::NotAFile;
    }
    return error == std::errc::permission_denied ? File::NotReadable : File::SystemError;
}

} // namespace

Result Add(const EngineString& folder, const EngineString& prefix, EngineVector<EngineString>& names)
{
    const fs::path root = ToPath(folder);
    std::error_code error;
    fs::recursive_directory_iterator entry(root, fs::directory_options::skip_permission_denied, error);
    if (error) {
        return ToCode(error);
    }
    const std::size_t rootLength = root.generic_u8string().size();
    for (const fs::recursive_directory_iterator end; entry != end; entry.increment(error)) {
        std::error_code ignored;
        if (entry.depth() >= maxDepth) {
            entry.disable_recursion_pending();
        }
        if (entry->is_regular_file(ignored)) {
            // As text: not all platforms can split a path with a system-specific prefix.
            const std::u8string path = entry->path().generic_u8string();
            const auto name =
                path.begin() + static_cast<std::ptrdiff_t>(path.find_first_not_of(u8'/', rootLength));
            names.push_back(prefix + EngineString(name, path.end()));
        }
    }
    return error ? ToCode(error) : Result(File::Opened);
}

} // namespace Quon::FolderList
