#pragma once

#include "harmonet/kernel/SndList.h"

#include <cstddef>

namespace Quon
{

/// An iteration over a list that stays valid while observers start, stop and delete sounds. It visits the
/// sounds that were on the list at its start, in their order, and skips those that have been removed
/// meanwhile.
///
/// It iterates over a copy of the list's entries, whose serials identify removed sounds. The copies of nested
/// walks are stored one after the other in the same memory.
class SoundWalk
{
public:
    enum Direction
    {
        FromHead,
        FromTail
    };

    /// How a walk treats sounds started during the running update.
    enum Newcomers
    {
        SkipNewcomers, ///< Skip them; the next update handles them.
        Visit
    };

    SoundWalk(SndList& list, EngineVector<ListEntry>& newMemory, Direction newDirection, Newcomers newcomers)
        : memory(newMemory)
        , first(memory.size())
        , next(first)
        , last(first)
        , direction(newDirection)
        , skippedMark(newcomers == SkipNewcomers ? std::uint32_t{RowNewcomer} : 0U)
    {
        const std::span<const ListEntry> entries = list.GetEntries();
        memory.insert(memory.end(), entries.begin(), entries.end());
        last = memory.size();
    }
    SoundWalk(const SoundWalk&) = delete;
    SoundWalk& operator=(const SoundWalk&) = delete;
    ~SoundWalk() { memory.resize(first); }

    /// Returns the next sound's row, or none at the end.
    SoundRow Next()
    {
        while (next < last) {
            const ListEntry entry = memory[direction == FromHead ? next++ : --last];
            const SoundRow row = entry.GetRow();
            if (row.Serial() == entry.serial && !row.HasMark(skippedMark)) {
                return row;
            }
        }
        return {};
    }

private:
    EngineVector<ListEntry>& memory;
    const std::size_t first;
    std::size_t next;
    std::size_t last;
    const Direction direction;
    const std::uint32_t skippedMark; ///< The mark of sounds to skip, or none.
};

} // namespace Quon
