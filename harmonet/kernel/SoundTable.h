#pragma once

#include "harmonet/kernel/HashIndex.h"
#include "harmonet/kernel/SoundRows.h"

#include <cstdint>

namespace Quon
{

/// The table of all existing sounds, started or not, as row numbers. It finds sounds by id, and bulk
/// operations iterate over it. Task thread only.
///
/// The sounds are in 32 buckets by the low bits of their ids; ids are sequential, which distributes them
/// evenly. With an index by id, the cost of a search, an addition and a removal does not depend on the number
/// of sounds.
class SoundTable
{
public:
    static constexpr std::size_t numBuckets = 32;

    /// Adds a sound that is not in the table; returns its place.
    std::uint32_t Add(std::uint32_t row);
    /// Removes the sound in that row from its place. Returns the sound that has moved there instead, or null.
    SndBase* Remove(std::uint32_t row, std::uint32_t place);
    /// Returns the sound with that id, or null.
    SndBase* Find(int id) const
    {
        const std::uint32_t row = index.Find(Spread(id),
            [id](std::uint32_t number) { return SoundRows::At(number).GetSound()->GetSoundID() == id; });
        return row != HashIndex::none ? SoundRows::At(row).GetSound() : nullptr;
    }
    /// Calls `visit` for every sound. The table must not change meanwhile.
    template<class Visit>
    void ForEach(Visit visit) const
    {
        for (const auto& bucket : buckets) {
            for (const std::uint32_t row : bucket) {
                visit(*SoundRows::At(row).GetSound());
            }
        }
    }

private:
    static std::size_t BucketOf(int id) { return static_cast<std::size_t>(id) & (numBuckets - 1); }
    // Distributed by the golden ratio: sequential ids would fill the index without gaps, and a removal would
    // then have to scan all of it.
    static std::uint32_t Spread(int id)
    {
        constexpr std::uint32_t goldenRatio = 0x9E3779B1;
        return static_cast<std::uint32_t>(id) * goldenRatio;
    }
    static std::uint32_t HashOf(std::uint32_t row)
    {
        return Spread(SoundRows::At(row).GetSound()->GetSoundID());
    }

    EngineVector<std::uint32_t> buckets[numBuckets];
    HashIndex index; ///< Of row numbers, by id.
};

} // namespace Quon
