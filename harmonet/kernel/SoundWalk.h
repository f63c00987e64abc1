#pragma once

#include "harmonet/kernel/SndList.h"

#include <cstddef>

namespace Quon
{

class SndKernel;

/// An iteration over one of the kernel's lists that stays valid while observers start, stop and delete
/// sounds. It visits the sounds that were on the list at its start, in their order, and skips those that have
/// been removed meanwhile.
///
/// It iterates over a copy of the list's entries, whose serials identify removed sounds. The copies of nested
/// walks are stored one after the other in memory owned by the kernel.
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

    SoundWalk(SndKernel& kernel, ListID id, Direction newDirection, Newcomers newcomers);
    SoundWalk(const SoundWalk&) = delete;
    SoundWalk& operator=(const SoundWalk&) = delete;
    ~SoundWalk() { memory.resize(first); }

    /// Returns the next sound's row, or none at the end.
    SoundRow Next()
    {
        while (begin < end) {
            const SndList::Entry entry = memory[direction == FromHead ? begin++ : --end];
            const SoundRow row = entry.GetRow();
            if (row.Serial() == entry.serial && !row.HasMark(skippedMark)) {
                return row;
            }
        }
        return {};
    }

private:
    EngineVector<SndList::Entry>& memory;
    const std::size_t first;
    std::size_t begin;
    std::size_t end;
    const Direction direction;
    const std::uint32_t skippedMark; ///< The mark of sounds to skip, or none.
};

} // namespace Quon
