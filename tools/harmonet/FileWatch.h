#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace Tool
{

/// Notices that one of several files has been saved.
class FileWatch
{
public:
    /// As they are now.
    explicit FileWatch(const std::vector<std::string>& newPaths);

    /// Whether one of them is other than it was, and nobody is writing it any more. Asks the disk at most
    /// every tenth of a second.
    bool HasChanged();

private:
    using Clock = std::chrono::steady_clock;

    /// The time and the size of a file; nothing of one that is not there, as while an editor saves it.
    struct State
    {
        std::filesystem::file_time_type time{};
        std::uintmax_t size = 0;
        bool operator==(const State&) const = default;
    };

    static State Look(const std::string& path);

    std::vector<std::string> paths;
    std::vector<State> states; ///< At the beginning.
    std::vector<State> seen; ///< At the last look.
    Clock::time_point nextLook;
};

} // namespace Tool
