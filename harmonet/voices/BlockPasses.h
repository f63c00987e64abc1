#pragma once

#include "harmonet/voices/ImportanceSort.h"
#include "harmonet/voices/SoundRow.h"

#include <cstdint>
#include <span>

namespace Quon
{

// The parts of a full update that go through the rows of all sounds in memory order. They change rows alone;
// what a sound object has to do is returned by lane. They do not allocate or fail. Task thread only.

/// What a pass finds out about the virtual sounds of a block.
struct VirtualLanes
{
    SoundBlock::Column<std::uint32_t> mayEnd; ///< Not 0 for those that are no counted loops.
    bool anyMayEnd;
    bool anyMoved;
};
void LookAtVirtual(const SoundBlock& block, VirtualLanes& found);

/// Advances the virtual sounds of a block, all of which can be counted. Returns whether any passes the end of
/// a loop that this cannot count; `isLeft` is not 0 for these.
bool CountVirtual(SoundBlock& block, const UpdateStep& step, SoundBlock::Column<std::uint32_t>& isLeft);

/// What a pass finds out about the sounds with channels.
struct HeardSounds
{
    bool stay; ///< None leaves the playing list in this update, so that no observer is called.
    bool anyMoved;
};
HeardSounds LookAtHeard(std::span<SoundBlock* const> blocks, const UpdateStep& step, bool hasListener);

/// Updates the distances, ranges and state times of the sounds with channels, all of which stay.
void UpdateHeard(SoundBlock& block, const UpdateStep& step);

/// What a pass finds out about the sounds that have channels or compete for them.
struct CompetingSounds
{
    ImportanceRange range;
    std::uint32_t nameBits; ///< No name has other bits.
    std::uint32_t flags; ///< All that one of them has.
};
CompetingSounds LookAtContenders(std::span<SoundBlock* const> blocks);

} // namespace Quon
