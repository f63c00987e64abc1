#pragma once

#include "harmonet/engine/Alloc.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <span>
#include <utility>

namespace Quon
{

/// Sorts numbered things by 64-bit keys, ascending; equal ones keep the order of their numbers.
///
/// Two passes of a radix sort over the highest bits in which the keys differ bring nearly all of them to
/// their place, whatever has moved; what is equal in these bits is sorted by comparison. Keeps its memory, so
/// that a steady number of things allocates nothing.
class ImportanceSort
{
public:
    struct Item
    {
        std::uint32_t digits; ///< The highest bits of the key that matter.
        std::uint32_t number;
    };

    /// Fills `items` with the numbers from `first` on in the order of their keys. `keyOf` gives the key of a
    /// number and is called several times for each.
    template<class KeyOf>
    void Sort(std::span<Item> items, std::uint32_t first, KeyOf keyOf)
    {
        const Layout layout = PackKeys(items, first, keyOf);
        if (items.size() < fewItems) {
            SortExactly(items, keyOf);
            return;
        }
        Scatter(items, layout.lowBits, layout.highBits);
        if (!layout.isExact)
            SortEqualDigits(items, keyOf);
    }

private:
    static constexpr std::size_t fewItems = 48;

    struct Layout
    {
        int lowBits; ///< Of the digit that is sorted by first.
        int highBits;
        bool isExact; ///< The two digits are all that the keys differ in.
    };

    static constexpr std::uint64_t LowBits(int count) { return (std::uint64_t{1} << count) - 1; }

    /// The keys without the bits that are the same in all of them, above either half, cut to two digits.
    template<class KeyOf>
    static Layout PackKeys(std::span<Item> items, std::uint32_t first, KeyOf keyOf)
    {
        constexpr int wordBits = 32;
        constexpr std::size_t manyItems = 3000;
        const int digitBits = items.size() < manyItems ? 9 : 11;
        std::uint64_t differing = 0;
        const std::uint64_t sample = items.empty() ? 0 : keyOf(first);
        for (std::uint32_t i = 0; i < items.size(); ++i)
            differing |= keyOf(first + i) ^ sample;
        const int lowerBits = std::bit_width(static_cast<std::uint32_t>(differing));
        const int upperBits = std::bit_width(static_cast<std::uint32_t>(differing >> wordBits));
        const int allBits = lowerBits + upperBits;
        const int usedBits = std::min(allBits, 2 * digitBits);
        const std::uint64_t lowerMask = LowBits(lowerBits);
        const std::uint64_t upperMask = LowBits(upperBits);
        for (std::uint32_t i = 0; i < items.size(); ++i) {
            const std::uint64_t key = keyOf(first + i);
            const std::uint64_t packed = (key >> wordBits & upperMask) << lowerBits | (key & lowerMask);
            items[i] = {static_cast<std::uint32_t>(packed >> (allBits - usedBits)), first + i};
        }
        return {usedBits / 2, usedBits - usedBits / 2, usedBits == allBits};
    }

    void Scatter(std::span<Item> items, int lowBits, int highBits);

    template<class KeyOf>
    static void SortExactly(std::span<Item> items, KeyOf keyOf)
    {
        std::sort(items.begin(), items.end(), [keyOf](const Item& left, const Item& right) {
            const std::uint64_t leftKey = keyOf(left.number);
            const std::uint64_t rightKey = keyOf(right.number);
            return leftKey != rightKey ? leftKey < rightKey : left.number < right.number;
        });
    }

    template<class KeyOf>
    static void SortEqualDigits(std::span<Item> items, KeyOf keyOf)
    {
        for (std::size_t begin = 0; begin < items.size();) {
            std::size_t end = begin + 1;
            while (end < items.size() && items[end].digits == items[begin].digits)
                ++end;
            if (end - begin > 1)
                SortExactly(items.subspan(begin, end - begin), keyOf);
            begin = end;
        }
    }

    EngineVector<Item> scratch;
    EngineVector<std::uint32_t> places; ///< Of the values of both digits.
};

} // namespace Quon
