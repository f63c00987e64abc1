#pragma once

#include "harmonet/engine/Alloc.h"

#include <cstddef>
#include <functional>
#include <unordered_map>
#include <utility>

namespace Quon
{

class SndBase;

/// The table of all existing sounds, started or not, by id. Bulk operations iterate over it: the sounds are
/// in 32 buckets by the low bits of their ids, and their order within a bucket is unspecified. Task thread
/// only.
class SoundTable
{
public:
    static constexpr std::size_t numBuckets = 32;

    /// Adds a sound under an id that is not in the table.
    void Add(int id, SndBase& sound) { BucketOf(id).emplace(id, &sound); }
    void Remove(int id) { BucketOf(id).erase(id); }
    /// Returns the sound with that id, or null.
    SndBase* Find(int id) const
    {
        const Bucket& bucket = buckets[IndexOf(id)];
        const auto place = bucket.find(id);
        return place != bucket.end() ? place->second : nullptr;
    }
    /// Calls `visit` for every sound. The table must not change meanwhile.
    template<class Visit>
    void ForEach(Visit visit) const
    {
        for (const Bucket& bucket : buckets) {
            for (const auto& [id, sound] : bucket) {
                visit(*sound);
            }
        }
    }

private:
    // The low bits are equal in a bucket.
    struct Hash
    {
        std::size_t operator()(int id) const noexcept { return static_cast<unsigned int>(id) / numBuckets; }
    };
    using Bucket = std::unordered_map<int, SndBase*, Hash, std::equal_to<int>,
        EngineAllocator<std::pair<const int, SndBase*>>>;

    static std::size_t IndexOf(int id) { return static_cast<unsigned int>(id) % numBuckets; }
    Bucket& BucketOf(int id) { return buckets[IndexOf(id)]; }

    Bucket buckets[numBuckets];
};

} // namespace Quon
