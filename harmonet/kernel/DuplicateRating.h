#pragma once

#include "harmonet/engine/Alloc.h"

#include <cstdint>

namespace Quon
{

class SndBase;
class SndList;

/// Gives each sound of a crowd of like sounds a worse rank, so that the channels go to different sounds.
///
/// Like sounds are those with the same file name and the same owner name; all sounds in memory are like one
/// another. Each sound's multiplier becomes 1.3 to the power of the number of like sounds that it loses to:
/// the more important ones, by priority and plain distance, and of its equals those that stand before it.
///
/// Keeps its memory from one time to the next, so that a steady number of sounds allocates nothing.
class DuplicateRating
{
public:
    /// Begins anew: no sounds yet.
    void Restart();
    /// Adds the sounds of a list, from the head, behind those already here.
    void Add(const SndList& list);
    /// Sets the multipliers of all sounds that have been added.
    void Rate();

private:
    struct Entry
    {
        SndBase* sound;
        std::uint32_t place; ///< Its place in the order of adding.
    };

    void SortIntoGroups();
    void RateGroup(Entry* begin, Entry* end);

    EngineVector<Entry> entries;
};

} // namespace Quon
