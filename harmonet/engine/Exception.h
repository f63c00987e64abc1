#pragma once

#include "harmonet/engine/Export.h"

#include <exception>

// <windows.h> has a macro of this name.
#if defined(_WIN32)
#pragma push_macro("GetMessage")
#undef GetMessage
#endif

namespace Quon
{

/// The exceptions of the engine. File name and text are not copied and must outlive the exception; use
/// literals.
class HARMONET_ENGINE_API Exception : public std::exception
{
public:
    /// `newFile` and `newLine` are where it is raised.
    Exception(const char* newFile, int newLine, const char* newMessage);
    Exception(const Exception&) = default;
    Exception& operator=(const Exception&) = default;
    ~Exception() override;

    /// The source file that threw it.
    const char* GetFile() const { return file; }
    /// The line in that file, and what has happened.
    int GetLine() const { return line; }
    const char* GetMessage() const { return message; }
#if defined(_WIN32)
    /// GetMessage() is renamed to this by the macro in code that includes <windows.h>.
    const char* GetMessageA() const
    {
        return message;
    }
    const char* GetMessageW() const
    {
        return message;
    }
#endif

    /// Same as GetMessage().
    const char* what() const noexcept override;

private:
    const char* file;
    int line;
    const char* message;
};

/// A property of a file could not be determined.
class HARMONET_ENGINE_API FileEx : public Exception
{
public:
    using Exception::Exception;
    FileEx(const FileEx&) = default;
    FileEx& operator=(const FileEx&) = default;
    ~FileEx() override;
};

/// Runs a function and catches what it throws.
class HARMONET_ENGINE_API ExceptionHandler
{
public:
    /// The result of Main() when an exception has ended the function.
    static constexpr int failed = -1;

    /// Runs function(argument) and returns its result. An exception that leaves the function is caught: its
    /// message and location are written to the standard error stream, and the result is `failed`. Any thread.
    static int Main(int (*function)(void*), void* argument);
};

} // namespace Quon

#if defined(_WIN32)
#pragma pop_macro("GetMessage")
#endif
