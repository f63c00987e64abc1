#pragma once

#include "tools/harmonet/TemporaryFolder.h"

#include <memory>
#include <string>

namespace Tool
{

/// The name of standard input and standard output on the command line.
constexpr const char* standardStream = "-";

/// An input of a command: a file, or all of standard input. Standard input is copied to a temporary file,
/// because sound files are not read sequentially. It can be used once.
class InputFile
{
public:
    /// `nameForStream` is the name of the temporary file. Throws a ToolError if standard input cannot be read
    /// or stored. A named file is not opened.
    InputFile(const std::string& newShown, const std::string& nameForStream);

    /// The path as the user wrote it.
    const std::string& GetShown() const { return shown; }
    /// The path of the file to read.
    const std::string& GetPath() const { return path; }

private:
    std::string shown;
    std::string path;
    std::unique_ptr<TemporaryFolder> folder; ///< Contains the temporary file; null for a named file.
};

} // namespace Tool
