#include "harmonet/kernel/SoundTable.h"

namespace Quon
{

std::uint32_t SoundTable::Add(std::uint32_t row)
{
    auto& bucket = buckets[BucketOf(SoundRows::At(row).GetSound()->GetSoundID())];
    // Allocations come first.
    index.Reserve(HashOf);
    bucket.push_back(row);
    index.Add(row, HashOf(row));
    return static_cast<std::uint32_t>(bucket.size() - 1);
}

SndBase* SoundTable::Remove(std::uint32_t row, std::uint32_t place)
{
    index.Remove(row, HashOf);
    auto& bucket = buckets[BucketOf(SoundRows::At(row).GetSound()->GetSoundID())];
    const std::uint32_t last = bucket.back();
    bucket.pop_back();
    if (place == bucket.size()) {
        return nullptr;
    }
    bucket[place] = last;
    return SoundRows::At(last).GetSound();
}

} // namespace Quon
