#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace Tool
{

bool IsFolder(const std::filesystem::path& path);

/// Returns all files in the folder and its subfolders, sorted by name, without hidden files and files below
/// `excluded`. Throws a ToolError if the folder cannot be read.
std::vector<std::filesystem::path> FindFiles(
    const std::filesystem::path& folder, const std::filesystem::path& excluded);

} // namespace Tool
