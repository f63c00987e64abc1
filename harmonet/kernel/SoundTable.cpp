#include "harmonet/kernel/SoundTable.h"

#include <algorithm>
#include <utility>

namespace Quon
{

void SoundTable::Add(int id, std::uint32_t row)
{
    auto& bucket = buckets[BucketOf(id)];
    bucket.insert(std::ranges::upper_bound(bucket, id, {}, &Entry::id), {id, row});
    SoundRows::At(row).TableID() = id;
    ++numSounds;
}

void SoundTable::Remove(SoundRow row)
{
    if (std::exchange(row.TableID(), 0) == 0) {
        return;
    }
    constexpr std::size_t fewEntries = 64;
    if (++numStale <= --numSounds + fewEntries) {
        return;
    }
    for (auto& bucket : buckets) {
        std::erase_if(bucket, [](const Entry& entry) { return entry.IsStale(); });
    }
    numStale = 0;
}

SndBase* SoundTable::Find(int id) const
{
    const auto& bucket = buckets[BucketOf(id)];
    const auto entry = std::ranges::lower_bound(bucket, id, {}, &Entry::id);
    const bool isFound = entry != bucket.end() && entry->id == id && !entry->IsStale();
    return isFound ? SoundRows::At(entry->row).GetSound() : nullptr;
}

} // namespace Quon
