#pragma once

#include "harmonet/engine/Alloc.h"
#include "harmonet/engine/ChunkRing.h"

namespace Quon
{

class SndBase;

/// The table of all sounds that exist, started or not, whichever list they are on. It finds a sound by its
/// id, and it is what the bulk operations walk. 32 buckets by the low bits of the id, each a ring of chunks
/// with 29 entries; ids are handed out in sequence and so spread evenly. Task thread only.
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
    SndBase* Find(int id) const;
    /// Takes the sound out of the table; nothing if it is not there.
    void Remove(SndBase* sound);
    /// Appends the ids of the sounds for which `matches` is true, bucket by bucket, ascending.
    template<class Matches>
    void CollectIds(EngineVector<int>& ids, Matches matches) const
    {
        ForEach([&](SndBase& sound) {
            if (matches(sound))
                ids.push_back(GetId(sound));
        });
    }
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
    static constexpr int entriesPerChunk = 29;
    using Bucket = ChunkRing<SndBase*, entriesPerChunk>;

    static int GetId(const SndBase& sound);
    static unsigned int BucketOf(int id) { return static_cast<unsigned int>(id) & (numBuckets - 1); }

    Bucket buckets[numBuckets];
    SndBase* lastSound = nullptr;
    int lastID = 0;
};

} // namespace Quon
