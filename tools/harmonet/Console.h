#pragma once

#include <cstdio>

namespace Tool
{

/// Prepares the console for the lifetime of the object: output is UTF-8, and waits of a few milliseconds are
/// not rounded up. main() owns the only instance.
class Console
{
public:
    Console();
    Console(const Console&) = delete;
    Console& operator=(const Console&) = delete;
    /// Restores the console.
    // NOLINTNEXTLINE(performance-trivially-destructible): the destructor has an effect on Windows only.
    ~Console();
};

/// Returns the command-line arguments in UTF-8 on every platform; `arguments` is what main() received. They
/// stay valid until the program ends.
char** GetArguments(char** arguments);

/// Returns whether standard output is a terminal, on which a line can be overwritten.
bool IsTerminal();

/// Returns whether standard input is a terminal.
bool IsInputTerminal();

/// Switches a standard stream to binary mode on every platform and returns it.
std::FILE* UseBinary(std::FILE* stream);

/// After this call, writing to a closed pipe fails with an error and no longer terminates the program.
void IgnoreClosedPipes();

/// Returns whether a write to standard output failed because the pipe has no reader. `reason` is a value of
/// errno.
bool IsClosedPipe(int reason);

} // namespace Tool
