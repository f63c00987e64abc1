#pragma once

#include "harmonet/engine/Alloc.h"
#include "harmonet/voices/SoundRows.h"

#include <cstdint>
#include <limits>
#include <span>

namespace Quon
{

/// The range of the priorities and squared distances of all contenders. The distances are the bits of floats,
/// which are in the order of the values, since none is negative.
struct ImportanceRange
{
    std::int32_t lowest = std::numeric_limits<std::int32_t>::max();
    std::int32_t highest = std::numeric_limits<std::int32_t>::min();
    std::int32_t nearest = std::numeric_limits<std::int32_t>::max();
    std::int32_t farthest = 0;
};

/// A stable sort of sounds by importance.
///
/// Two passes of a radix sort over the highest differing bits place nearly all items, whatever has moved;
/// items equal in these bits are sorted by comparison. Keeps its memory, so that a constant number of sounds
/// does not allocate.
class ImportanceSort
{
public:
    struct Item
    {
        std::uint32_t code; ///< Working memory.
        std::uint32_t row;
    };
    enum Order
    {
        ByDistance, ///< The most important first, by priority and plain distance.
        ByWeightedDistance ///< The least important first, by priority and weighted distance.
    };

    /// Takes the present importance of all contenders. Multipliers are at most `maxMultiplier`.
    void TakeCodes(std::span<SoundBlock* const> newBlocks, const ImportanceRange& range, Order newOrder,
        float maxMultiplier);
    /// Sorts the sounds of the lists, which must be contenders, into `items`, which must have their number.
    void Sort(std::span<const std::span<const ListEntry>> lists, std::span<Item> items);

private:
    void EncodeBlock(const SoundBlock& block, std::uint32_t* code) const;
    void Scatter(std::span<const std::span<const ListEntry>> lists, std::span<Item> items);
    void SortEqualDigits(std::span<Item> items) const;
    void SortByComparison(std::span<Item> items) const;
    std::uint64_t KeyOf(const Item& item) const;

    std::span<SoundBlock* const> blocks;
    Order order = ByDistance;
    /// For each row: its priority below the highest one, then its distance, without the leading bits that are
    /// equal in all contenders and, if they do not fit, without the last bits of the distance.
    EngineVector<std::uint32_t> codes;
    std::int32_t highestPriority = 0;
    int distanceBits = 0; ///< The number of those that can differ.
    int droppedBits = 0; ///< Of the distance.
    int codeBits = 0;
    int ignoredBits = 0; ///< Last bits of the code that Scatter() ignored.
    EngineVector<Item> scratch;
    EngineVector<std::uint32_t> places; ///< Start positions of the values of both digits.
};

} // namespace Quon
