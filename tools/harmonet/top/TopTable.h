#pragma once

#include "harmonet/kernel/SoundState.h"

#include <span>
#include <string>
#include <vector>

namespace Tool
{

class PlayReport;

/// The sounds as a live table shows them: which of them, and in which order. It knows nothing of the screen.
class TopTable
{
public:
    enum class Column
    {
        State, ///< The heard ones first, and the most important of each state first.
        Priority,
        Distance,
        Gain,
        Age,
        Name
    };
    /// Which phases are shown; All is every one.
    enum class Show
    {
        All,
        Heard,
        Virtual,
        Waiting
    };
    struct Row
    {
        Quon::SoundState state;
        std::string name; ///< On one line, whatever is in the name of the file.
    };
    struct Counts
    {
        int heard = 0;
        int isVirtual = 0;
        int waiting = 0;
    };

    /// Sorts by that column from now on, and in the reverse order if it is the present one.
    void SortBy(Column newColumn);
    Column GetColumn() const { return column; }
    bool IsReverse() const { return isReverse; }

    void SetShow(Show newShow) { show = newShow; }
    Show GetShow() const { return show; }
    /// Shows the sounds alone whose names hold that text, in capitals or not. Empty for all.
    void SetSearch(const std::string& text) { search = text; }
    const std::string& GetSearch() const { return search; }

    /// Takes a snapshot of all sounds; `report` knows how the user calls them.
    void Update(const PlayReport& report);

    std::span<const Row> GetRows() const { return rows; }
    /// Of all sounds, shown or not. A line counts through its sources.
    const Counts& GetCounts() const { return counts; }

private:
    bool IsShown(const Row& row) const;
    bool IsBefore(const Row& a, const Row& b) const;
    void Count(const Quon::SoundState& state);

    Column column = Column::State;
    bool isReverse = false;
    Show show = Show::All;
    std::string search;
    std::vector<Quon::SoundState> snapshot; ///< Kept from update to update, which makes the next one cheaper.
    std::vector<Row> rows;
    Counts counts;
};

} // namespace Tool
