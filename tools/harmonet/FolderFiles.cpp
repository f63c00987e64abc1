#include "tools/harmonet/FolderFiles.h"

#include "tools/harmonet/PathText.h"
#include "tools/harmonet/ToolError.h"

#include <algorithm>

namespace Tool
{

namespace
{

namespace fs = std::filesystem;

bool IsHidden(const fs::path& path)
{
    return ToText(path.filename()).starts_with('.');
}

} // namespace

bool IsFolder(const fs::path& path)
{
    std::error_code error;
    return fs::is_directory(path, error);
}

std::vector<fs::path> FindFiles(const fs::path& folder, const fs::path& excluded)
{
    std::vector<fs::path> files;
    std::error_code error;
    fs::recursive_directory_iterator place(folder, fs::directory_options::skip_permission_denied, error);
    for (; !error && place != fs::recursive_directory_iterator(); place.increment(error)) {
        std::error_code ignored;
        const bool isExcluded = fs::equivalent(place->path(), excluded, ignored);
        if (place->is_directory(ignored) && (isExcluded || IsHidden(place->path()))) {
            place.disable_recursion_pending();
        }
        else if (place->is_regular_file(ignored) && !IsHidden(place->path())) {
            files.push_back(place->path());
        }
    }
    if (error) {
        throw ToolError(
            "cannot read the folder '" + ToText(folder) + "': " + error.message(), ExitCode::NoInput);
    }
    std::sort(files.begin(), files.end());
    return files;
}

} // namespace Tool
