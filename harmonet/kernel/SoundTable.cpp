#include "harmonet/kernel/SoundTable.h"

#include <bit>
#include <utility>

namespace Quon
{

namespace
{
constexpr std::size_t minIndexSize = 64;
}

void SoundTable::Add(SndBase* sound)
{
    sound->tableChunk = buckets[BucketOf(sound->soundID)].Append(sound);
    ++count;
    if (2 * static_cast<std::size_t>(count) > index.size())
        GrowIndex();
    else
        AddToIndex(sound);
}

void SoundTable::Remove(SndBase* sound)
{
    if (!sound->tableChunk)
        return;
    SoundBucket::Chunk* chunk = std::exchange(sound->tableChunk, nullptr);
    if (SndBase** moved = buckets[BucketOf(sound->soundID)].EraseUnordered(chunk, sound))
        (*moved)->tableChunk = chunk;
    RemoveFromIndex(sound->soundID);
    --count;
    ++numRemoved;
}

void SoundTable::AddToIndex(SndBase* sound)
{
    std::size_t place = HomeOf(sound->soundID);
    while (index[place].sound)
        place = (place + 1) & mask;
    index[place] = {sound->soundID, sound};
}

// Closes the gap: whatever stands behind it and would no longer be found from its home moves forward.
void SoundTable::RemoveFromIndex(int id)
{
    std::size_t gap = HomeOf(id);
    while (index[gap].id != id)
        gap = (gap + 1) & mask;
    for (std::size_t place = (gap + 1) & mask; index[place].sound; place = (place + 1) & mask) {
        const std::size_t distanceFromHome = (place - HomeOf(index[place].id)) & mask;
        if (distanceFromHome >= ((place - gap) & mask)) {
            index[gap] = index[place];
            gap = place;
        }
    }
    index[gap] = {0, nullptr};
}

void SoundTable::GrowIndex()
{
    const std::size_t newSize = index.empty() ? minIndexSize : 2 * index.size();
    index.assign(newSize, {0, nullptr});
    mask = newSize - 1;
    shift = 32 - std::countr_zero(newSize);
    ForEach([this](SndBase& sound) { AddToIndex(&sound); });
}

} // namespace Quon
