#pragma once

#include "harmonet/engine/PString.h"
#include "tools/harmonet/InputFile.h"

#include <memory>
#include <string>
#include <vector>

namespace Tool
{

/// The files that were named on the command line, the standard input among them, made known to the engine.
///
/// The engine finds files below root folders alone. Here the root of all plain names is the deepest folder
/// that holds all the files, so that a single file's folder is its root and nothing beside the files is
/// opened up.
class FileArguments
{
public:
    struct File
    {
        std::string shown; ///< As the user has written it.
        Quon::PString name; ///< As the engine finds it, without an owner.
    };

    /// Throws a ToolError for the first path that is missing, no file, or not readable.
    explicit FileArguments(const std::vector<std::string>& paths);

    const std::vector<File>& GetFiles() const { return files; }

private:
    std::vector<std::unique_ptr<InputFile>> inputs;
    std::vector<File> files;
};

} // namespace Tool
