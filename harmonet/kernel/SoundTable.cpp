#include "harmonet/kernel/SoundTable.h"

#include <bit>

namespace Quon
{

std::uint32_t SoundTable::Add(std::uint32_t row)
{
    auto& bucket = buckets[BucketOf(SoundRows::At(row).sound->GetSoundID())];
    // What needs memory comes first.
    if (2 * (count + 1) > index.size()) {
        GrowIndex();
    }
    bucket.push_back(row);
    ++count;
    AddToIndex(row);
    return static_cast<std::uint32_t>(bucket.size() - 1);
}

SndBase* SoundTable::Remove(int id, std::uint32_t place)
{
    RemoveFromIndex(id);
    --count;
    auto& bucket = buckets[BucketOf(id)];
    const std::uint32_t last = bucket.back();
    bucket.pop_back();
    if (place == bucket.size()) {
        return nullptr;
    }
    bucket[place] = last;
    return SoundRows::At(last).sound;
}

void SoundTable::AddToIndex(std::uint32_t row)
{
    std::size_t slot = HomeOf(SoundRows::At(row).sound->GetSoundID());
    while (index[slot] != none) {
        slot = GetNext(slot);
    }
    index[slot] = row;
}

// Closes the gap: whatever stands after it and would no longer be found from its home moves forward.
void SoundTable::RemoveFromIndex(int id)
{
    std::size_t gap = HomeOf(id);
    while (GetSound(gap)->GetSoundID() != id) {
        gap = GetNext(gap);
    }
    const std::size_t mask = index.size() - 1;
    for (std::size_t slot = GetNext(gap); index[slot] != none; slot = GetNext(slot)) {
        const std::size_t distanceFromHome = (slot - HomeOf(GetSound(slot)->GetSoundID())) & mask;
        if (distanceFromHome >= ((slot - gap) & mask)) {
            index[gap] = index[slot];
            gap = slot;
        }
    }
    index[gap] = none;
}

void SoundTable::GrowIndex()
{
    constexpr std::size_t minIndexSize = 64;
    const std::size_t newSize = index.empty() ? minIndexSize : 2 * index.size();
    index.assign(newSize, none);
    shift = 32 - std::countr_zero(newSize);
    for (const auto& bucket : buckets) {
        for (const std::uint32_t row : bucket) {
            AddToIndex(row);
        }
    }
}

} // namespace Quon
