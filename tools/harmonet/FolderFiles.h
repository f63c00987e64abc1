#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace Tool
{

bool IsFolder(const std::filesystem::path& path);

/// All files in the folder and below, in the order of their names, without hidden ones and without what lies
/// below `excluded`. Throws a ToolError if it cannot be read.
std::vector<std::filesystem::path> FindFiles(
    const std::filesystem::path& folder, const std::filesystem::path& excluded);

} // namespace Tool
