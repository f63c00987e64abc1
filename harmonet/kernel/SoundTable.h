#pragma once

#include "harmonet/engine/Alloc.h"
#include "harmonet/kernel/SoundRows.h"

#include <cstdint>

namespace Quon
{

/// The table of all sounds that exist, started or not, whichever list they are on, as row numbers. It finds a
/// sound by its id, and it is what the bulk operations walk. Task thread only.
///
/// The sounds stand in 32 buckets by the low bits of their ids; ids are handed out in sequence and so spread
/// evenly. Beside the buckets an index by id, a hash table with linear probing, makes a look-up, an entry and
/// a removal cost the same however many sounds there are.
class SoundTable
{
public:
    static constexpr std::size_t numBuckets = 32;
    static constexpr std::uint32_t none = 0xFFFFFFFF;

    /// Enters a sound that is not in the table; returns its place.
    std::uint32_t Add(std::uint32_t row);
    /// Takes the sound with that id out of its place, into which another may move: returns that one or null.
    SndBase* Remove(int id, std::uint32_t place);
    /// The sound with that id, or null.
    SndBase* Find(int id) const
    {
        if (index.empty()) {
            return nullptr;
        }
        for (std::size_t slot = HomeOf(id); index[slot] != none; slot = GetNext(slot)) {
            if (SndBase* sound = GetSound(slot); sound->GetSoundID() == id) {
                return sound;
            }
        }
        return nullptr;
    }
    /// Calls `visit` for every sound. The table must not change meanwhile.
    template<class Visit>
    void ForEach(Visit visit) const
    {
        for (const auto& bucket : buckets) {
            for (const std::uint32_t row : bucket) {
                visit(*SoundRows::At(row).sound);
            }
        }
    }

private:
    static std::size_t BucketOf(int id) { return static_cast<std::size_t>(id) & (numBuckets - 1); }
    // Spread by the golden ratio: ids in sequence would fill the index without a gap, and closing one would
    // then cost a walk over all of it.
    std::size_t HomeOf(int id) const
    {
        constexpr std::uint32_t goldenRatio = 0x9E3779B1;
        return static_cast<std::uint32_t>(id) * goldenRatio >> shift;
    }
    std::size_t GetNext(std::size_t slot) const { return (slot + 1) & (index.size() - 1); }
    SndBase* GetSound(std::size_t slot) const { return SoundRows::At(index[slot]).sound; }
    void AddToIndex(std::uint32_t row);
    void RemoveFromIndex(int id);
    void GrowIndex();

    EngineVector<std::uint32_t> buckets[numBuckets];
    EngineVector<std::uint32_t> index; ///< Row numbers; at most half full; its size is a power of two.
    int shift = 0; ///< Leaves as many bits of a hash as the index has.
    std::size_t count = 0;
};

} // namespace Quon
