#include "harmonet/kernel/SoundWalk.h"

#include "harmonet/kernel/SndKernel.h"

namespace Quon
{

SoundWalk::SoundWalk(SndKernel& kernel, ListID id, Direction newDirection, Newcomers newcomers)
    : memory(kernel.GetWalkMemory())
    , first(memory.size())
    , begin(first)
    , end(first)
    , direction(newDirection)
    , skippedMark(newcomers == SkipNewcomers ? std::uint32_t{RowNewcomer} : 0U)
{
    const std::span<const SndList::Entry> entries = kernel.GetList(id).GetEntries();
    memory.insert(memory.end(), entries.begin(), entries.end());
    end = memory.size();
}

} // namespace Quon
