#pragma once

#include "harmonet/engine/PString.h"
#include "tools/harmonet/InputFile.h"

#include <memory>
#include <string>
#include <vector>

namespace Tool
{

/// The files named on the command line, including standard input, made available to the engine.
///
/// The engine finds files only below root folders. The root used here is the deepest folder that contains all
/// the files; for a single file it is the file's own folder.
class FileArguments
{
public:
    struct File
    {
        std::string shown; ///< As the user wrote it.
        Quon::PString name; ///< The name by which the engine finds it, without an owner.
    };

    /// Throws a ToolError for the first path that does not exist, is not a file or is not readable.
    explicit FileArguments(const std::vector<std::string>& paths);

    const std::vector<File>& GetFiles() const { return files; }

private:
    std::vector<std::unique_ptr<InputFile>> inputs;
    std::vector<File> files;
};

} // namespace Tool
