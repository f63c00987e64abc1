#pragma once

#include "harmonet/kernel/SoundState.h"

#include <span>
#include <string>
#include <vector>

namespace Tool
{

class PlayReport;

/// The rows of the live table: filters and sorts the sounds. Independent of the screen.
class TopTable
{
public:
    enum class Column
    {
        State, ///< Heard sounds first; within a state, the most important first.
        Priority,
        Distance,
        Gain,
        Age,
        Name
    };
    /// The phases that are shown.
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
        std::string name; ///< Without line breaks, whatever the file name contains.
    };
    struct Counts
    {
        int heard = 0;
        int isVirtual = 0;
        int waiting = 0;
    };

    /// Sorts by that column. If it is already the current one, reverses the order.
    void SortBy(Column newColumn);
    Column GetColumn() const { return column; }
    bool IsReverse() const { return isReverse; }

    void SetShow(Show newShow) { show = newShow; }
    Show GetShow() const { return show; }
    /// Shows only sounds whose names contain the text, ignoring case. Empty for all.
    void SetSearch(const std::string& text) { search = text; }
    const std::string& GetSearch() const { return search; }

    /// Takes a snapshot of all sounds. `report` provides their names.
    void Update(const PlayReport& report);

    std::span<const Row> GetRows() const { return rows; }
    /// Counts all sounds, shown or not. The sources of a line are counted, not the line itself.
    const Counts& GetCounts() const { return counts; }

private:
    bool IsShown(const Row& row) const;
    bool IsBefore(const Row& a, const Row& b) const;
    void Count(const Quon::SoundState& state);

    Column column = Column::State;
    bool isReverse = false;
    Show show = Show::All;
    std::string search;
    std::vector<Quon::SoundState> snapshot; ///< Reused by each update to avoid allocations.
    std::vector<Row> rows;
    Counts counts;
};

} // namespace Tool
