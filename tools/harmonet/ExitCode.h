#pragma once

namespace Tool
{

/// The exit codes of the program. main() lists them in the help.
enum class ExitCode : int
{
    Done = 0,
    Failed = 1, ///< `check` found errors, or no other code fits.
    BadArguments = 2,
    NoInput = 3, ///< A file is missing or cannot be opened.
    BadInput = 4, ///< A file is damaged or of an unsupported type.
    NoOutput = 5, ///< A result cannot be written, for example because the disk is full.
    ClosedPipe = 6, ///< The reader of the output closed it.
    NoDriver = 7, ///< No output driver works.
};

} // namespace Tool
