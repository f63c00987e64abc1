#pragma once

#include <filesystem>

namespace Tool
{

/// A private folder below the system's folder for temporary files. The destructor removes it with its
/// content.
class TemporaryFolder
{
public:
    /// Throws a ToolError if the folder cannot be created.
    TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder();

    const std::filesystem::path& GetPath() const { return path; }

private:
    std::filesystem::path path;
};

} // namespace Tool
