#pragma once

#include "harmonet/kernel/SndList.h"

#include <cstddef>

namespace Quon
{

class SndKernel;

/// A walk over one of the kernel's lists that stays sound whatever happens on the way, when observers start,
/// stop and delete sounds. It visits the sounds that stood there when it began, in their order, and passes
/// over those that have left the list meanwhile.
///
/// It goes over a copy of the list's entries, whose serials tell what has left. The copies of nested walks
/// lie behind one another in memory that the kernel keeps.
class SoundWalk
{
public:
    enum Direction
    {
        FromHead,
        FromTail
    };

    /// What a walk does about sounds that were started during the running update.
    enum Newcomers
    {
        PassOver, ///< They are for the next update.
        Visit
    };

    SoundWalk(SndKernel& kernel, ListID id, Direction newDirection, Newcomers newcomers);
    SoundWalk(const SoundWalk&) = delete;
    SoundWalk& operator=(const SoundWalk&) = delete;
    ~SoundWalk() { memory.resize(first); }

    /// The next sound's row, or null at the end.
    SoundRow* Next()
    {
        while (begin < end) {
            const SndList::Entry entry = memory[direction == FromHead ? begin++ : --end];
            SoundRow& row = entry.GetRow();
            if (row.serial == entry.serial && !row.HasMark(passedOver)) {
                return &row;
            }
        }
        return nullptr;
    }

private:
    EngineVector<SndList::Entry>& memory;
    const std::size_t first;
    std::size_t begin;
    std::size_t end;
    const Direction direction;
    const std::uint16_t passedOver; ///< The mark of those that are not visited, or none.
};

} // namespace Quon
