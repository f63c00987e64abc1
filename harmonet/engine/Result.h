#pragma once

/// What an operation of the engine has to say about its success: a code, of which 0 is success. What the
/// other codes mean is told by the class that gives them.

namespace Quon
{

class Result
{
public:
    Result(int newCode = 0)
        : code(newCode)
    {
    }

    int GetCode() const { return code; }
    bool IsOk() const { return code == 0; }

private:
    int code;
};

} // namespace Quon
