#include "harmonet/kernel/ImportanceOrder.h"

#include "harmonet/kernel/NameNumbers.h"
#include "harmonet/kernel/SndList.h"

#include <array>
#include <bit>
#include <utility>

namespace Quon
{

namespace
{

constexpr float lossFactor = 1.3F;

// Greater is more important, and equal is equal, as the comparison of sounds has it. Distances are never
// negative and never NaN, and the bits of such floats are in the order of their values.
std::uint64_t MakeKey(int priority, float distance)
{
    constexpr std::uint32_t signBit = 0x80000000;
    const std::uint32_t high = static_cast<std::uint32_t>(priority) ^ signBit;
    return static_cast<std::uint64_t>(high) << 32 | ~std::bit_cast<std::uint32_t>(distance);
}

} // namespace

void ImportanceOrder::Apply(std::span<SndList* const> lists, NameNumbers& names)
{
    Gather(lists, names);
    RateDuplicates();
    std::uint32_t begin = 0;
    for (SndList* list : lists) {
        SortList(*list, begin);
        begin += static_cast<std::uint32_t>(list->GetCount());
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
    entries.clear();
    for (std::uint32_t place = 0; place < members.size(); ++place) {
        // Turned round: the most important first.
        entries.push_back({~MakeKey(members[place].priority, members[place].distance), place});
    }
    SortEntries();
    // In this order a sound has lost to all like sounds that stand in front of it.
    for (std::size_t place = 0; place < entries.size(); ++place) {
        if (place + prefetchDistance < entries.size())
            PrefetchRating(members[entries[place + prefetchDistance].member].sound);
        Member& member = members[entries[place].member];
        const float multiplier = GetMultiplier(numRated[member.nameNumber]++);
        if (member.multiplier != multiplier)
            member.sound->SetMultiplier(multiplier);
        member.distance = SndBase::WeightDistance(member.distance, multiplier);
    }
}

float ImportanceOrder::GetMultiplier(std::uint32_t numLosses)
{
    while (numLosses >= multipliers.size())
        multipliers.push_back(multipliers.empty() ? 1.0F : multipliers.back() * lossFactor);
    return multipliers[numLosses];
}

// The list's sounds are the members from `begin` on, in the list's order.
void ImportanceOrder::SortList(SndList& list, std::uint32_t begin)
{
    const std::uint32_t end = begin + static_cast<std::uint32_t>(list.GetCount());
    entries.clear();
    bool isInOrder = true;
    for (std::uint32_t place = begin; place < end; ++place) {
        const std::uint64_t key = MakeKey(members[place].priority, members[place].distance);
        isInOrder = isInOrder && (entries.empty() || entries.back().key <= key);
        entries.push_back({key, place});
    }
    if (!isInOrder)
        SortEntries();
    sorted.clear();
    for (const Entry& entry : entries)
        sorted.push_back(members[entry.member].sound);
    list.Reorder(sorted);
}

// Wide digits take fewer passes over the sounds, narrow ones fewer counters: few sounds are not worth many.
void ImportanceOrder::SortEntries()
{
    constexpr std::size_t fewSounds = 3000;
    if (entries.size() < fewSounds)
        RadixSort<8>();
    else
        RadixSort<11>();
}

// A stable sort, from the lowest digit to the highest. Digits in which no two keys differ cost nothing:
// mostly those of the priority.
template<int digitBits>
void ImportanceOrder::RadixSort()
{
    constexpr std::uint64_t digitMask = (std::uint64_t{1} << digitBits) - 1;
    std::uint64_t differing = 0;
    for (const Entry& entry : entries)
        differing |= entry.key ^ entries.front().key;
    scratch.resize(entries.size());
    for (int shift = 0; shift < 64; shift += digitBits) {
        if ((differing >> shift & digitMask) == 0)
            continue;
        std::array<std::uint32_t, digitMask + 1> places{};
        for (const Entry& entry : entries)
            ++places[entry.key >> shift & digitMask];
        std::uint32_t begin = 0;
        for (std::uint32_t& place : places)
            begin += std::exchange(place, begin);
        for (const Entry& entry : entries)
            scratch[places[entry.key >> shift & digitMask]++] = entry;
        entries.swap(scratch);
    }
}

} // namespace Quon
