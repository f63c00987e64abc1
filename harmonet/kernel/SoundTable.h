#pragma once

#include "harmonet/engine/Alloc.h"
#include "harmonet/kernel/SoundRows.h"

#include <cstdint>

namespace Quon
{

/// The table of all existing sounds, started or not. It finds sounds by id, and bulk operations iterate over
/// it. Task thread only.
///
/// The sounds are in 32 buckets by the low bits of their ids, each in the order of the ids. Ids are
/// sequential, so a new sound nearly always comes last. Removing a sound only clears the table's id in its
/// row; stale entries are removed when they outnumber the others.
class SoundTable
{
public:
    static constexpr std::size_t numBuckets = 32;

    /// Adds a sound that is not in the table.
    void Add(int id, std::uint32_t row);
    /// Removes the sound in that row, if it is in the table.
    void Remove(SoundRow row);
    /// Returns the sound with that id, or null.
    SndBase* Find(int id) const;
    /// Calls `visit` for every sound. The table must not change meanwhile.
    template<class Visit>
    void ForEach(Visit visit) const
    {
        for (const auto& bucket : buckets) {
            for (const Entry& entry : bucket) {
                if (!entry.IsStale()) {
                    visit(*SoundRows::At(entry.row).GetSound());
                }
            }
        }
    }

private:
    struct Entry
    {
        int id;
        std::uint32_t row;

        bool IsStale() const { return SoundRows::At(row).TableID() != id; }
    };

    static std::size_t BucketOf(int id) { return static_cast<std::size_t>(id) & (numBuckets - 1); }

    EngineVector<Entry> buckets[numBuckets];
    std::size_t numSounds = 0;
    std::size_t numStale = 0;
};

} // namespace Quon
