#include "tools/harmonet/TemporaryFolder.h"

#include "tools/harmonet/PathText.h"
#include "tools/harmonet/ToolError.h"

#include <random>
#include <string>

namespace Tool
{

namespace fs = std::filesystem;

TemporaryFolder::TemporaryFolder()
{
    constexpr int attempts = 100;
    std::random_device random;
    std::error_code error;
    const fs::path parent = fs::temp_directory_path(error);
    for (int i = 0; i < attempts && !error; ++i) {
        path = parent / ("harmonet-" + std::to_string(random()));
        // Returns false if the folder already exists.
        if (fs::create_directory(path, error)) {
            fs::permissions(path, fs::perms::owner_all, error);
            return;
        }
    }
    throw ToolError(
        "cannot create a folder for temporary files in '" + ToText(parent) + "'", ExitCode::NoOutput);
}

TemporaryFolder::~TemporaryFolder()
{
    std::error_code ignored;
    fs::remove_all(path, ignored);
}

} // namespace Tool
