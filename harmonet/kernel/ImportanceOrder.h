#pragma once

#include "harmonet/engine/Alloc.h"

#include <cstdint>
#include <span>

namespace Quon
{

class NameNumbers;
class SndBase;
class SndList;

/// Puts the sounds of the kernel's lists in order for an allocation: rates like sounds against each other,
/// and sorts the lists by importance.
///
/// What sounds are compared by is gathered once, into arrays, and radix sorts put it in order in a few
/// passes, however the sounds have moved: the sounds themselves lie all over the memory, and each visit
/// costs. Keeps its memory, so that a steady number of sounds allocates nothing. Task thread only.
class ImportanceOrder
{
public:
    /// Rates the sounds of all lists together and then sorts each list.
    ///
    /// *Rating.* Each sound of a crowd of like sounds gets a worse rank, so that the channels go to different
    /// sounds. Like sounds are those with the same file name and the same owner name; all sounds in memory
    /// are like one another. Each sound's multiplier becomes 1.3 to the power of the number of like sounds
    /// that it loses to: the more important ones, by priority and plain distance, and of its equals those
    /// that stand before it, the lists standing one behind the other.
    ///
    /// *Sorting.* By importance with the multipliers, ascending. Sounds that compare equal keep their order.
    void Apply(std::span<SndList* const> lists, NameNumbers& names);

private:
    enum Direction
    {
        LeastImportantFirst,
        MostImportantFirst
    };
    /// Greater is more important, and equal is equal, as the comparison of sounds has it: the priority, and
    /// below it the squared distance, plain before the rating and weighted after it.
    using Key = std::uint64_t;
    struct Member
    {
        SndBase* sound;
        Key key;
        float multiplier;
        std::uint32_t nameNumber;
    };
    struct Entry
    {
        std::uint32_t key;
        std::uint32_t member;
    };

    static Key MakeKey(int priority, float distance);
    void Gather(std::span<SndList* const> lists, NameNumbers& names);
    void RateDuplicates();
    void SortList(SndList& list, std::span<const Member> listed);
    /// Fills `entries` with the numbers of these members in order; equal ones keep theirs.
    void Sort(std::span<const Member> sorted, Direction direction);
    void RadixSort(int bits);
    template<int passes>
    void RadixSortInPasses(int bits);
    void PrefetchMember(std::span<const Member> sorted, std::size_t place) const;

    EngineVector<Member> members;
    Key differing = 0; ///< The bits in which the keys are not all the same, and perhaps others.
    EngineVector<Entry> entries;
    EngineVector<Entry> scratch;
    EngineVector<std::uint32_t> places; ///< Of the values of the digits.
    EngineVector<float> multipliers; ///< By the number of losses.
    EngineVector<std::uint32_t> numRated; ///< By the name number.
};

} // namespace Quon
