#pragma once

namespace Tool
{

/// While it lives, nothing that the process writes to its standard error stream is seen. The libraries of a
/// sound device say there in many lines what the tool tells in one sentence.
class QuietErrors
{
public:
    QuietErrors();
    QuietErrors(const QuietErrors&) = delete;
    QuietErrors& operator=(const QuietErrors&) = delete;
    ~QuietErrors();

private:
    int kept; ///< Where the stream goes; -1 when nothing has been changed.
};

} // namespace Tool
