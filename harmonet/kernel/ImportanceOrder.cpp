#include "harmonet/kernel/ImportanceOrder.h"

#include "harmonet/kernel/NameNumbers.h"
#include "harmonet/kernel/SndList.h"

#include <algorithm>
#include <bit>
#include <utility>

namespace Quon
{

namespace
{

constexpr float lossFactor = 1.3F;
constexpr int wordBits = 32;

constexpr std::uint32_t LowBits(int count)
{
    return static_cast<std::uint32_t>((std::uint64_t{1} << count) - 1);
}

} // namespace

// Distances are never negative and never NaN, and the bits of such floats are in the order of their values.
ImportanceOrder::Key ImportanceOrder::MakeKey(const Member& member)
{
    constexpr std::uint32_t signBit = 0x80000000;
    const std::uint32_t high = static_cast<std::uint32_t>(member.priority) ^ signBit;
    return static_cast<Key>(high) << wordBits | ~std::bit_cast<std::uint32_t>(member.distance);
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
    members.clear();
    for (const SndList* list : lists) {
        list->ForEach([&](SndBase& sound) {
            members.push_back({&sound, sound.GetPriority(), sound.GetPlainDistSqr(), sound.GetMultiplier(),
                sound.GetNameNumber(names)});
        });
    }
    numRated.assign(names.GetCount(), 0);
}

void ImportanceOrder::RateDuplicates()
{
    Sort(members, MostImportantFirst);
    // In this order a sound has lost to all like sounds that stand in front of it.
    for (std::size_t place = 0; place < entries.size(); ++place) {
        PrefetchMember(members, place + prefetchDistance);
        Member& member = members[entries[place].member];
        member.multiplier = GetMultiplier(numRated[member.nameNumber]++);
        member.distance = SndBase::WeightDistance(member.distance, member.multiplier);
    }
}

float ImportanceOrder::GetMultiplier(std::uint32_t numLosses)
{
    while (numLosses >= multipliers.size())
        multipliers.push_back(multipliers.empty() ? 1.0F : multipliers.back() * lossFactor);
    return multipliers[numLosses];
}

// The members are the list's sounds in the list's order.
void ImportanceOrder::SortList(SndList& list, std::span<const Member> listed)
{
    Sort(listed, LeastImportantFirst);
    std::size_t place = 0;
    list.Reorder([&]() -> SndBase& {
        PrefetchMember(listed, place + 2 * prefetchDistance);
        if (place + prefetchDistance < entries.size())
            PrefetchLinks(listed[entries[place + prefetchDistance].member].sound);
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
    Key differing = 0;
    bool isInOrder = true;
    Key before = 0;
    for (const Member& member : sorted) {
        const Key key = MakeKey(member) ^ turned;
        differing |= key ^ (MakeKey(sorted.front()) ^ turned);
        isInOrder = isInOrder && before <= key;
        before = key;
    }
    const int distanceBits = std::bit_width(static_cast<std::uint32_t>(differing));
    const int priorityBits = std::bit_width(static_cast<std::uint32_t>(differing >> wordBits));
    const bool fits = distanceBits + priorityBits <= wordBits;
    entries.clear();
    for (std::uint32_t place = 0; place < sorted.size(); ++place) {
        const Key key = MakeKey(sorted[place]) ^ turned;
        const std::uint32_t distance = static_cast<std::uint32_t>(key) & LowBits(distanceBits);
        const std::uint32_t priority = static_cast<std::uint32_t>(key >> wordBits) & LowBits(priorityBits);
        entries.push_back(
            {fits ? static_cast<std::uint32_t>(Key{priority} << distanceBits) | distance : distance, place});
    }
    if (isInOrder)
        return;
    RadixSort(fits ? distanceBits + priorityBits : distanceBits);
    if (fits)
        return;
    for (Entry& entry : entries)
        entry.key = static_cast<std::uint32_t>((MakeKey(sorted[entry.member]) ^ turned) >> wordBits);
    RadixSort(wordBits);
}

// A stable sort by the lowest bits of the keys, from the lowest digit to the highest.
void ImportanceOrder::RadixSort(int bits)
{
    const int passes = CountPasses(bits);
    const int digitBits = (bits + passes - 1) / std::max(passes, 1);
    const std::size_t numValues = std::size_t{1} << digitBits;
    const std::uint32_t digitMask = LowBits(digitBits);
    places.assign(static_cast<std::size_t>(passes) * numValues, 0);
    for (const Entry& entry : entries) {
        for (int pass = 0; pass < passes; ++pass)
            ++places[static_cast<std::size_t>(pass) * numValues +
                (entry.key >> pass * digitBits & digitMask)];
    }
    scratch.resize(entries.size());
    for (int pass = 0; pass < passes; ++pass) {
        std::uint32_t* const placesOfPass = places.data() + static_cast<std::size_t>(pass) * numValues;
        std::uint32_t begin = 0;
        for (std::size_t value = 0; value < numValues; ++value)
            begin += std::exchange(placesOfPass[value], begin);
        for (const Entry& entry : entries)
            scratch[placesOfPass[entry.key >> pass * digitBits & digitMask]++] = entry;
        entries.swap(scratch);
    }
}

// Wide digits take fewer passes over the sounds, narrow ones fewer counters.
int ImportanceOrder::CountPasses(int bits) const
{
    constexpr int maxDigitBits = 12;
    int best = 0;
    std::size_t bestCost = 0;
    for (int passes = (bits + maxDigitBits - 1) / maxDigitBits; passes <= 4; ++passes) {
        const int digitBits = (bits + passes - 1) / std::max(passes, 1);
        const std::size_t cost =
            static_cast<std::size_t>(passes) * (entries.size() + (std::size_t{1} << digitBits));
        if (best == 0 || cost < bestCost) {
            best = passes;
            bestCost = cost;
        }
    }
    return best;
}

} // namespace Quon
