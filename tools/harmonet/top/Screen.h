#pragma once

#include <memory>
#include <string>

namespace Tool
{

class PlayReport;

/// Shows the sounds on the whole terminal while it lives, and obeys the user's keys: sorts, filters, searches
/// and scrolls. The terminal is as before when it has gone. There is one at a time.
class Screen
{
public:
    /// Throws a ToolError where there is no terminal, one of an unknown kind, or no such screen in this
    /// build.
    Screen();
    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;
    ~Screen();

    /// Takes the keys that have come, and some times a second draws anew. False when the user wants to leave.
    bool Update(unsigned long playedMs, unsigned int maxAudible, const PlayReport& report);

private:
    class Terminal;
    std::unique_ptr<Terminal> terminal;
};

/// Throws a ToolError where there is no terminal, or no screen in this build: before anything is played.
void CheckScreen();

} // namespace Tool
