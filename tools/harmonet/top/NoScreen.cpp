#include "tools/harmonet/ToolError.h"
#include "tools/harmonet/top/Screen.h"

namespace Tool
{

class Screen::Terminal
{
};

void CheckScreen()
{
    throw ToolError("this build has no --top, because ncurses was not found", ExitCode::BadArguments);
}

Screen::Screen()
{
    CheckScreen();
}

Screen::~Screen() = default;

bool Screen::Update(unsigned long, unsigned int, const PlayReport&)
{
    return false;
}

} // namespace Tool
