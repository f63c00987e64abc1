#pragma once

#include "harmonet/engine/Alloc.h"
#include "harmonet/engine/ChunkRing.h"
#include "harmonet/instances/SndBase.h"

#include <cstdint>

namespace Quon
{

/// The table of all sounds that exist, started or not, whichever list they are on. It finds a sound by its
/// id, and it is what the bulk operations walk. Task thread only.
///
/// The sounds stand in 32 buckets by the low bits of their ids, each a ring of chunks with 29 entries; ids
/// are handed out in sequence and so spread evenly. Beside the buckets an index by id, a hash table with
/// linear probing, makes a look-up, an entry and a removal cost the same however many sounds there are.
class SoundTable
{
public:
    static constexpr int numBuckets = 32;

    SoundTable() = default;
    SoundTable(const SoundTable&) = delete;
    SoundTable& operator=(const SoundTable&) = delete;

    /// Enters a sound that is not in the table.
    void Add(SndBase* sound);
    /// The sound with that id, or null.
    SndBase* Find(int id) const
    {
        if (index.empty())
            return nullptr;
        for (std::size_t place = HomeOf(id);; place = (place + 1) & mask) {
            if (index[place].id == id)
                return index[place].sound;
            if (!index[place].sound)
                return nullptr;
        }
    }
    /// Takes the sound out of the table; nothing if it is not there.
    void Remove(SndBase* sound);
    /// How many sounds have left the table so far: while this number stands, no pointer into it goes stale.
    std::uint64_t GetNumRemoved() const { return numRemoved; }
    int GetCount() const { return count; }
    /// Calls `visit` for every sound. The table must not change meanwhile.
    template<class Visit>
    void ForEach(Visit visit) const
    {
        for (const Bucket& bucket : buckets) {
            for (auto place = bucket.GetBegin(); place.IsValid(); place.MoveOn())
                visit(**place);
        }
    }

private:
    using Bucket = SoundBucket;
    struct IndexEntry
    {
        int id; ///< 0 in an empty entry.
        SndBase* sound; ///< Null in an empty entry.
    };

    static std::size_t BucketOf(int id) { return static_cast<std::size_t>(id) & (numBuckets - 1); }
    // Spread by the golden ratio: ids in sequence would fill the index without a gap, and closing one would
    // then cost a walk over all of it.
    std::size_t HomeOf(int id) const
    {
        constexpr std::uint32_t goldenRatio = 0x9E3779B1;
        return static_cast<std::uint32_t>(id) * goldenRatio >> shift;
    }
    void AddToIndex(SndBase* sound);
    void RemoveFromIndex(int id);
    void GrowIndex();

    Bucket buckets[numBuckets];
    EngineVector<IndexEntry> index; ///< At most half full; its size is a power of two.
    std::size_t mask = 0;
    int shift = 0; ///< Leaves as many bits of a hash as the index has.
    int count = 0;
    std::uint64_t numRemoved = 0;
};

} // namespace Quon
