#include "harmonet/kernel/DuplicateRating.h"

#include "harmonet/kernel/SndList.h"

#include <algorithm>
#include <functional>

namespace Quon
{

namespace
{

constexpr float lossFactor = 1.3F;

bool AreAlike(const SndBase& a, const SndBase& b)
{
    return a.GetFileName() == b.GetFileName() && a.GetSubstName() == b.GetSubstName();
}

} // namespace

void DuplicateRating::Restart()
{
    entries.clear();
}

void DuplicateRating::Add(const SndList& list)
{
    for (SndBase* sound = list.GetHead(); sound; sound = list.GetNext(*sound))
        entries.push_back({sound, static_cast<std::uint32_t>(entries.size())});
}

void DuplicateRating::Rate()
{
    SortIntoGroups();
    Entry* const end = entries.data() + entries.size();
    for (Entry* begin = entries.data(); begin != end;) {
        Entry* groupEnd = begin + 1;
        while (groupEnd != end && AreAlike(*groupEnd->sound, *begin->sound))
            ++groupEnd;
        RateGroup(begin, groupEnd);
        begin = groupEnd;
    }
}

// Like sounds side by side; the more important first, and of equals the one that was added first.
void DuplicateRating::SortIntoGroups()
{
    std::sort(entries.begin(), entries.end(), [](const Entry& a, const Entry& b) {
        const void* fileA = a.sound->GetFileName().GetIdentity();
        const void* fileB = b.sound->GetFileName().GetIdentity();
        if (fileA != fileB)
            return std::less<const void*>()(fileA, fileB);
        const void* ownerA = a.sound->GetSubstName().GetIdentity();
        const void* ownerB = b.sound->GetSubstName().GetIdentity();
        if (ownerA != ownerB)
            return std::less<const void*>()(ownerA, ownerB);
        if (*a.sound > *b.sound)
            return true;
        if (*a.sound < *b.sound)
            return false;
        return a.place < b.place;
    });
}

// In this order a sound has lost to all that stand in front of it.
void DuplicateRating::RateGroup(Entry* begin, Entry* end)
{
    float multiplier = 1.0F;
    for (Entry* entry = begin; entry != end; ++entry) {
        entry->sound->SetMultiplier(multiplier);
        multiplier *= lossFactor;
    }
}

} // namespace Quon
