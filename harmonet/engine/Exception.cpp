#include "harmonet/engine/Exception.h"

#include <cstdio>

namespace Quon
{

Exception::Exception(const char* newFile, int newLine, const char* newMessage)
    : file(newFile)
    , line(newLine)
    , message(newMessage)
{
}

Exception::~Exception() = default;

const char* Exception::what() const noexcept
{
    return message;
}

FileEx::~FileEx() = default;

int ExceptionHandler::Main(int (*function)(void*), void* argument)
{
    try {
        return function(argument);
    }
    catch (const Exception& exception) {
        std::fprintf(
            stderr, "%s (%s:%d)\n", exception.GetMessage(), exception.GetFile(), exception.GetLine());
    }
    catch (const std::exception& exception) {
        std::fprintf(stderr, "%s\n", exception.what());
    }
    catch (...) {
        std::fputs("An unknown exception ended the function.\n", stderr);
    }
    return failed;
}

} // namespace Quon
