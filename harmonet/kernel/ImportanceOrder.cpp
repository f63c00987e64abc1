#include "harmonet/kernel/ImportanceOrder.h"

#include "harmonet/kernel/NameNumbers.h"
#include "harmonet/kernel/SndList.h"

#include <bit>
#include <utility>

namespace Quon
{

namespace
{

constexpr float lossFactor = 1.3F;
constexpr int wordBits = 32;
constexpr int wideDigitBits = 11;
constexpr std::size_t mostPlaces = 3 << wideDigitBits; // Four narrow digits have fewer.

constexpr std::uint32_t LowBits(int count)
{
    return static_cast<std::uint32_t>((std::uint64_t{1} << count) - 1);
}

} // namespace

// Distances are never negative and never NaN, and the bits of such floats are in the order of their values.
ImportanceOrder::Key ImportanceOrder::MakeKey(int priority, float distance)
{
    constexpr std::uint32_t signBit = 0x80000000;
    const std::uint32_t high = static_cast<std::uint32_t>(priority) ^ signBit;
    return static_cast<Key>(high) << wordBits | ~std::bit_cast<std::uint32_t>(distance);
}

void ImportanceOrder::Apply(std::span<SndList* const> lists, NameNumbers& names)
{
    Gather(lists, names);
    RateDuplicates();
    std::span<const Member> left = members;
    for (SndList* list : lists) {
        const auto count = static_cast<std::size_t>(list->GetCount());
        SortList(*list, left.first(count));
        left = left.subspan(count);
    }
}

void ImportanceOrder::Gather(std::span<SndList* const> lists, NameNumbers& names)
{
    std::size_t count = 0;
    for (const SndList* list : lists)
        count += static_cast<std::size_t>(list->GetCount());
    members.resize(count);
    differing = 0;
    Member* member = members.data();
    for (const SndList* list : lists) {
        list->ForEach([&](SndBase& sound) {
            const Key key = MakeKey(sound.GetPriority(), sound.GetPlainDistSqr());
            *member++ = {&sound, key, 1.0F, sound.GetNameNumber(names)};
            differing |= key ^ members.front().key;
        });
    }
    numRated.assign(names.GetCount(), 0);
    while (multipliers.size() < members.size())
        multipliers.push_back(multipliers.empty() ? 1.0F : multipliers.back() * lossFactor);
}

void ImportanceOrder::RateDuplicates()
{
    Sort(members, MostImportantFirst);
    const Key before = members.empty() ? 0 : members.front().key;
    // In this order a sound has lost to all like sounds that stand in front of it.
    for (std::size_t place = 0; place < entries.size(); ++place) {
        PrefetchMember(members, place + prefetchDistance);
        Member& member = members[entries[place].member];
        member.multiplier = multipliers[numRated[member.nameNumber]++];
        const auto distance = std::bit_cast<float>(~static_cast<std::uint32_t>(member.key));
        const float weighted = SndBase::WeightDistance(distance, member.multiplier);
        member.key = (member.key >> wordBits << wordBits) | ~std::bit_cast<std::uint32_t>(weighted);
        differing |= member.key ^ before;
    }
}

// The members are the list's sounds in the list's order.
void ImportanceOrder::SortList(SndList& list, std::span<const Member> listed)
{
    Sort(listed, LeastImportantFirst);
    std::size_t place = 0;
    list.Reorder([&]() -> SndBase& {
        PrefetchMember(listed, place + 2 * prefetchDistance);
        if (place + prefetchDistance < entries.size())
            PrefetchLine(listed[entries[place + prefetchDistance].member].sound);
        const Member& member = listed[entries[place++].member];
        member.sound->SetMultiplier(member.multiplier);
        return *member.sound;
    });
}

// Asks the processor to fetch the member that comes at that place of the order.
void ImportanceOrder::PrefetchMember(std::span<const Member> sorted, std::size_t place) const
{
    if (place < entries.size())
        PrefetchLine(&sorted[entries[place].member]);
}

// Leaves out what all keys have in common in front of priority and distance. What is left of the two mostly
// fits into one word; else the distance is sorted by first and the priority afterwards.
void ImportanceOrder::Sort(std::span<const Member> sorted, Direction direction)
{
    const Key turned = direction == MostImportantFirst ? ~Key{0} : Key{0};
    const int distanceBits = std::bit_width(static_cast<std::uint32_t>(differing));
    const int priorityBits = std::bit_width(static_cast<std::uint32_t>(differing >> wordBits));
    const bool fits = distanceBits + priorityBits <= wordBits;
    const Key distanceMask = LowBits(distanceBits);
    const Key priorityMask = fits ? LowBits(priorityBits) : 0;
    entries.resize(sorted.size());
    for (std::uint32_t place = 0; place < sorted.size(); ++place) {
        const Key key = sorted[place].key ^ turned;
        const Key packed = (key >> wordBits & priorityMask) << distanceBits | (key & distanceMask);
        entries[place] = {static_cast<std::uint32_t>(packed), place};
    }
    RadixSort(fits ? distanceBits + priorityBits : distanceBits);
    if (fits)
        return;
    for (Entry& entry : entries)
        entry.key = static_cast<std::uint32_t>((sorted[entry.member].key ^ turned) >> wordBits);
    RadixSort(wordBits);
}

// A stable sort by the lowest bits of the keys. Wide digits take fewer passes over the sounds, narrow ones
// fewer counters.
void ImportanceOrder::RadixSort(int bits)
{
    constexpr std::size_t fewSounds = 3000;
    const int wideBits = entries.size() < fewSounds ? 8 : wideDigitBits;
    switch ((bits + wideBits - 1) / wideBits) {
    case 0:
        return;
    case 1:
        return RadixSortInPasses<1>(bits);
    case 2:
        return RadixSortInPasses<2>(bits);
    case 3:
        return RadixSortInPasses<3>(bits);
    default:
        return RadixSortInPasses<4>(bits);
    }
}

// One digit for each pass, from the lowest to the highest.
template<int passes>
void ImportanceOrder::RadixSortInPasses(int bits)
{
    const int digitBits = (bits + passes - 1) / passes;
    const std::size_t numValues = std::size_t{1} << digitBits;
    const std::uint32_t digitMask = LowBits(digitBits);
    // As many as there can ever be, so that wider keys do not allocate in the midst of a game.
    places.reserve(mostPlaces);
    places.assign(passes * numValues, 0);
    std::uint32_t* const counters = places.data();
    for (const Entry& entry : entries) {
        for (int pass = 0; pass < passes; ++pass)
            ++counters[pass * numValues + (entry.key >> pass * digitBits & digitMask)];
    }
    scratch.resize(entries.size());
    for (int pass = 0; pass < passes; ++pass) {
        std::uint32_t* const placesOfPass = counters + pass * numValues;
        std::uint32_t begin = 0;
        for (std::size_t value = 0; value < numValues; ++value)
            begin += std::exchange(placesOfPass[value], begin);
        Entry* const target = scratch.data();
        for (const Entry& entry : entries)
            target[placesOfPass[entry.key >> pass * digitBits & digitMask]++] = entry;
        entries.swap(scratch);
    }
}

} // namespace Quon
