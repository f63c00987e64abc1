#pragma once

namespace Tool
{

/// How the program ends. main() lists them in the help.
enum class ExitCode : int
{
    Done = 0,
    Failed = 1, ///< `check` has found something, or no other code fits.
    BadArguments = 2,
    NoInput = 3, ///< A file is missing or cannot be opened.
    BadInput = 4, ///< A file is damaged or of a kind that is not read.
    NoOutput = 5, ///< A result cannot be written, for example onto a full disk.
    ClosedPipe = 6, ///< Whoever read the output has closed it.
    NoDriver = 7, ///< No output driver works.
};

} // namespace Tool
