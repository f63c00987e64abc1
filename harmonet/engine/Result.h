#pragma once

namespace Quon
{

/// What an operation of the engine has to say about its success: a code, of which 0 is success. What the
/// other codes mean is told by the class that gives them.
class Result
{
public:
    /// Success unless a code is given.
    Result(int newCode = 0)
        : code(newCode)
    {
    }

    /// The code, and whether it is 0.
    int GetCode() const { return code; }
    bool IsOk() const { return code == 0; }

private:
    int code;
};

} // namespace Quon
