#pragma once

#include <cstdio>

namespace Tool
{

/// Prepares the console for as long as it lives: output is in UTF-8, and a wait of a few milliseconds takes
/// no longer. main() owns the one there is.
class Console
{
public:
    Console();
    Console(const Console&) = delete;
    Console& operator=(const Console&) = delete;
    /// Leaves the console as it was.
    // NOLINTNEXTLINE(performance-trivially-destructible): there is something to leave on Windows alone.
    ~Console();
};

/// The arguments of the command line as main() gets them, in UTF-8 on every platform. They live as long as
/// the program.
char** GetArguments(char** arguments);

/// Whether standard output is shown on a terminal, on which a line can be written anew.
bool IsTerminal();

/// Whether standard input comes from a terminal, at which somebody types.
bool IsInputTerminal();

/// The standard stream, which from here on takes and gives bytes as they are, on every platform.
std::FILE* UseBinary(std::FILE* stream);

/// From here on a reader that closes our output shows as an error of the write and no longer ends the
/// program.
void IgnoreClosedPipes();

/// Whether a write to the standard output that failed for this reason, a value of errno, had no reader.
bool IsClosedPipe(int reason);

} // namespace Tool
