#pragma once

#include "tools/harmonet/ExitCode.h"
#include "tools/harmonet/Host.h"

#include <string>
#include <vector>

namespace Tool
{

/// The arguments of `play`.
struct PlayRequest
{
    std::vector<std::string> paths;
    std::string root;
    std::vector<float> position; ///< Empty, or x, y and z.
    bool isLooping = false;
    float gain = 1.0F;
    int priority = 0;
    double seconds = 0.0; ///< 0 for as long as the sounds last.
    std::string room; ///< Empty for none.
    bool isWalking = false;
    bool isWatching = false;
    bool isOnScreen = false; ///< Shows a live table of the sounds. Time runs in real time.
    std::string tracePath; ///< Empty for none. Likewise timelinePath.
    std::string timelinePath;
    Host::Settings host;
};

/// Plays until all sounds have ended, the time is up or the user interrupts. With `isWatching`, plays again
/// whenever a file is saved. Throws a ToolError on failure.
ExitCode Play(const PlayRequest& request);

} // namespace Tool
