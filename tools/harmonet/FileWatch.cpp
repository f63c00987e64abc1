#include "tools/harmonet/FileWatch.h"

#include "tools/harmonet/PathText.h"

namespace Tool
{

namespace
{

constexpr std::chrono::milliseconds pause(100);

} // namespace

FileWatch::FileWatch(const std::vector<std::string>& newPaths)
    : paths(newPaths)
    , nextCheck(Clock::now())
{
    for (const std::string& path : paths) {
        states.push_back(ReadState(path));
    }
    seen = states;
}

bool FileWatch::HasChanged()
{
    if (Clock::now() < nextCheck) {
        return false;
    }
    nextCheck = Clock::now() + pause;
    for (std::size_t i = 0; i < paths.size(); ++i) {
        const State now = ReadState(paths[i]);
        const bool isSettled = now == seen[i] && now != State();
        if (isSettled && now != states[i]) {
            return true;
        }
        seen[i] = now;
    }
    return false;
}

FileWatch::State FileWatch::ReadState(const std::string& path)
{
    std::error_code error;
    State state;
    state.time = std::filesystem::last_write_time(ToPath(path), error);
    if (!error) {
        state.size = std::filesystem::file_size(ToPath(path), error);
    }
    return error ? State() : state;
}

} // namespace Tool
