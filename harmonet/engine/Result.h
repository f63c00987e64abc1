#pragma once

namespace Quon
{

/// The result of an engine operation: a code, of which 0 is success. The class that returns it defines the
/// other codes.
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
