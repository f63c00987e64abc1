#include "examples/scene/Report.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdio>
#include <fstream>

namespace Scene
{

namespace
{

double Seconds(long ms)
{
    return static_cast<double>(ms) / 1000.0;
}

using State = SoundHistory::State;

int CountWith(const SoundHistory& history, State state)
{
    return static_cast<int>(std::ranges::count_if(history.GetEntries(), [state](const auto& item) {
        return std::ranges::any_of(item.second.changes,
            [state](const SoundHistory::Change& change) { return change.state == state; });
    }));
}

bool IsHeard(const SoundHistory::Change& change)
{
    return change.state == State::Heard || change.state == State::HeardAgain;
}

/// Prints the intervals in which the sound was heard. Between them it was virtual.
void PrintEntry(int id, const SoundHistory::Entry& entry)
{
    const auto& changes = entry.changes;
    std::printf("%4d  %-19s %6.2f  %-7s %6.2f ", id, entry.file.c_str(), Seconds(changes.front().atMs),
        entry.isRunning ? "" : SoundHistory::GetName(changes.back().state), Seconds(changes.back().atMs));
    if (!entry.isWatched) {
        std::printf("  along a line: from up to %d positions at once", entry.maxPlaces);
    }
    for (std::size_t i = 0; i + 1 < changes.size(); ++i) {
        if (IsHeard(changes[i])) {
            std::printf("  %.2f-%.2f", Seconds(changes[i].atMs), Seconds(changes[i + 1].atMs));
        }
    }
    std::printf("\n");
}

} // namespace

void PrintTable(const SoundHistory& history)
{
    std::printf("  id  file                 start  end             heard, in seconds; virtual in between\n");
    for (const auto& [id, entry] : history.GetEntries()) {
        PrintEntry(id, entry);
    }

    std::printf("\n%zu sounds; at most %d ran at once and %d were heard\n", history.GetEntries().size(),
        history.GetMaxRunning(), history.GetMaxHeard());
    std::printf("%d were heard, %d of them again after they had been virtual; %d were virtual for a while\n",
        CountWith(history, State::Heard), CountWith(history, State::HeardAgain),
        CountWith(history, State::Emulated));
    std::printf(
        "%d ended, %d were cut off\n", CountWith(history, State::Ended), CountWith(history, State::CutOff));
}

void WriteJson(const SoundHistory& history, const std::filesystem::path& path)
{
    nlohmann::ordered_json sounds = nlohmann::ordered_json::array();
    for (const auto& [id, entry] : history.GetEntries()) {
        nlohmann::ordered_json changes = nlohmann::ordered_json::array();
        for (const SoundHistory::Change& change : entry.changes) {
            changes.push_back(
                {{"seconds", Seconds(change.atMs)}, {"state", SoundHistory::GetName(change.state)}});
        }
        sounds.push_back({{"id", id}, {"file", entry.file}, {"changes", changes}});
    }
    std::ofstream out;
    out.exceptions(std::ios::failbit | std::ios::badbit);
    out.open(path);
    out << sounds.dump(2) << '\n';
    out.close();
}

} // namespace Scene
