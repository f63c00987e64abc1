#pragma once

#include "tools/harmonet/TemporaryFolder.h"

#include <memory>
#include <string>

namespace Tool
{

/// An output of a command: a file or standard output. Data are first written to a temporary file (except for
/// devices), so that a failure leaves no partial file and keeps an existing one.
class OutputFile
{
public:
    /// Throws a ToolError if the temporary file for standard output cannot be created.
    explicit OutputFile(const std::string& newShown);
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;
    /// Removes the temporary file, if it has not been committed.
    ~OutputFile();

    /// The path as the user wrote it, for messages.
    std::string GetShown() const;
    /// The path to write to. The file must be closed before Commit().
    const std::string& GetPath() const { return path; }

    /// Moves the temporary file to its destination. Throws a ToolError if that fails.
    void Commit();

private:
    bool IsStream() const { return folder != nullptr; }
    void CopyToStream() const;

    std::string shown;
    std::string path;
    std::unique_ptr<TemporaryFolder>
        folder; ///< Contains the temporary file for standard output; otherwise null.
};

} // namespace Tool
