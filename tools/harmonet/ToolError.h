#pragma once

#include "tools/harmonet/ExitCode.h"

#include <stdexcept>
#include <string>

namespace Tool
{

/// A fatal error: one sentence for the user, without a full stop, and the exit code. main() prints it.
class ToolError : public std::runtime_error
{
public:
    explicit ToolError(const std::string& sentence, ExitCode newCode = ExitCode::Failed)
        : std::runtime_error(sentence)
        , code(newCode)
    {
    }

    ExitCode GetCode() const { return code; }

private:
    ExitCode code;
};

} // namespace Tool
