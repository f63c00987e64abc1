#pragma once

#include "tools/harmonet/ExitCode.h"
#include "tools/harmonet/Host.h"

#include <string>
#include <vector>

namespace Tool
{

/// What the command line asks `play` for.
struct PlayRequest
{
    std::vector<std::string> paths;
    std::string root;
    std::vector<float> position; ///< Empty, or x, y, z.
    bool isLooping = false;
    float gain = 1.0F;
    int priority = 0;
    double seconds = 0.0; ///< 0 for as long as the sounds last.
    std::string room; ///< Empty for none.
    bool isWalking = false;
    bool isWatching = false;
    bool isOnScreen = false; ///< With a live table of the sounds, while the time goes on as on the clock.
    std::string tracePath; ///< Empty for none; likewise the next one.
    std::string timelinePath;
    Host::Settings host;
};

/// Plays it until all sounds have ended, the time is up or the user interrupts; while watching, again
/// whenever a file is saved. Throws a ToolError when it cannot.
ExitCode Play(const PlayRequest& request);

} // namespace Tool
