#pragma once

#include <memory>
#include <string>

namespace Tool
{

class PlayReport;

/// Shows the sounds on the whole terminal and handles the keys to sort, filter, search and scroll. The
/// destructor restores the terminal. At most one instance may exist.
class Screen
{
public:
    /// Throws a ToolError if there is no terminal, its type is unknown, or this build has no screen.
    Screen();
    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;
    ~Screen();

    /// Handles pending keys and redraws several times a second. Returns false when the user quits.
    bool Update(unsigned long playedMs, unsigned int maxAudible, const PlayReport& report);

private:
    class Terminal;
    std::unique_ptr<Terminal> terminal;
};

/// Throws a ToolError if there is no terminal or this build has no screen. Called before anything is played.
void CheckScreen();

} // namespace Tool
