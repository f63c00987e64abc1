#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace Tool
{

/// Detects that one of several files has been saved.
class FileWatch
{
public:
    /// Records the current state of the files.
    explicit FileWatch(const std::vector<std::string>& newPaths);

    /// Returns whether a file has changed since construction and is no longer being written. Reads the file
    /// system at most every tenth of a second.
    bool HasChanged();

private:
    using Clock = std::chrono::steady_clock;

    /// The time and size of a file. Default values while the file does not exist, for example while an editor
    /// saves it.
    struct State
    {
        std::filesystem::file_time_type time{};
        std::uintmax_t size = 0;
        bool operator==(const State&) const = default;
    };

    static State ReadState(const std::string& path);

    std::vector<std::string> paths;
    std::vector<State> states; ///< At construction.
    std::vector<State> seen; ///< At the last check.
    Clock::time_point nextCheck;
};

} // namespace Tool
