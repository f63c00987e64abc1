#pragma once

#include "tools/harmonet/TemporaryFolder.h"

#include <memory>
#include <string>

namespace Tool
{

/// What a command line calls the standard input, and the standard output.
constexpr const char* standardStream = "-";

/// An input of a command: a file, or all of the standard input, which is kept in a temporary file since sound
/// files are not read from front to back. The standard input can be taken once.
class InputFile
{
public:
    /// `nameForStream` is the name of the temporary file. Throws a ToolError if the standard input cannot be
    /// read or kept; a file is not touched.
    InputFile(const std::string& newShown, const std::string& nameForStream);

    /// As the user has written it.
    const std::string& GetShown() const { return shown; }
    /// Where the file lies.
    const std::string& GetPath() const { return path; }

private:
    std::string shown;
    std::string path;
    std::unique_ptr<TemporaryFolder> folder; ///< Of the temporary file; else null.
};

} // namespace Tool
