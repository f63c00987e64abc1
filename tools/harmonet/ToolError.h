#pragma once

#include <stdexcept>

namespace Tool
{

/// A reason to give up, as one sentence for the user without a full stop. main() prints it.
class ToolError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

} // namespace Tool
