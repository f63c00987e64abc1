#pragma once

#include "tools/harmonet/TemporaryFolder.h"

#include <memory>
#include <string>

namespace Tool
{

/// An output of a command: a file, or the standard output. What is written goes elsewhere at first, so that a
/// failure leaves no half of a file, and a file of that name as it was.
class OutputFile
{
public:
    /// Throws a ToolError if there is no room for the temporary file of the standard output.
    explicit OutputFile(const std::string& newShown);
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;
    /// Removes what was written, if it has not been committed.
    ~OutputFile();

    /// As the user has written it, for messages.
    std::string GetShown() const;
    /// Where to write. The file must be closed when it is committed.
    const std::string& GetPath() const { return path; }

    /// Puts what was written in its place. Throws a ToolError when that fails.
    void Commit();

private:
    bool IsStream() const { return folder != nullptr; }
    void CopyToStream() const;

    std::string shown;
    std::string path;
    std::unique_ptr<TemporaryFolder> folder; ///< Of the temporary file for the standard output; else null.
};

} // namespace Tool
