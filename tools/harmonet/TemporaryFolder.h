#pragma once

#include <filesystem>

namespace Tool
{

/// A folder of our own below the system's folder for temporary files. Is removed with all that is in it.
class TemporaryFolder
{
public:
    /// Throws a ToolError if there can be none.
    TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder();

    const std::filesystem::path& GetPath() const { return path; }

private:
    std::filesystem::path path;
};

} // namespace Tool
