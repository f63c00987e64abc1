#include "tools/harmonet/Console.h"

#include <cerrno>
#include <csignal>

#include <unistd.h>

namespace Tool
{

Console::Console() = default;

Console::~Console() = default;

char** GetArguments(char** arguments)
{
    return arguments;
}

bool IsTerminal()
{
    return isatty(STDOUT_FILENO) != 0;
}

bool IsInputTerminal()
{
    return isatty(STDIN_FILENO) != 0;
}

std::FILE* UseBinary(std::FILE* stream)
{
    return stream;
}

void IgnoreClosedPipes()
{
    std::signal(SIGPIPE, SIG_IGN);
}

bool IsClosedPipe(int reason)
{
    return reason == EPIPE;
}

} // namespace Tool
