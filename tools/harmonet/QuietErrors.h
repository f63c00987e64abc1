#pragma once

namespace Tool
{

/// Suppresses standard error of the process while the object exists. The libraries of a sound device print
/// many lines there for an error that the tool reports in one sentence.
class QuietErrors
{
public:
    QuietErrors();
    QuietErrors(const QuietErrors&) = delete;
    QuietErrors& operator=(const QuietErrors&) = delete;
    ~QuietErrors();

private:
    int kept; ///< A copy of the original descriptor; -1 if the stream was not redirected.
};

} // namespace Tool
