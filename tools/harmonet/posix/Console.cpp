#include "tools/harmonet/Console.h"

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

} // namespace Tool
