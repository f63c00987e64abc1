#pragma once

#include "harmonet/engine/Alloc.h"

#include <cstdint>
#include <span>

namespace Quon
{

/// Sorts numbered items by 64-bit keys, ascending; equal keys keep the order of their numbers.
///
/// Two passes of a radix sort over the highest bits in which the keys differ place nearly all items, whatever
/// has moved; items equal in these bits are sorted by comparison. Keeps its memory, so that a constant number
/// of items does not allocate.
class ImportanceSort
{
public:
    struct Item
    {
        std::uint32_t digits; ///< The highest differing bits of the key.
        std::uint32_t number;
    };

    /// Fills `items`, which must have the size of `keys`, with the numbers of the keys in order. The first
    /// key has the number `first`.
    void Sort(std::span<Item> items, std::span<const std::uint64_t> keys, std::uint32_t first);

private:
    /// The two radix digits: the lower and the higher bits of Item::digits.
    struct Digits
    {
        int lowBits;
        int highBits;
        bool areAll; ///< The keys differ in these bits only.
    };

    static Digits TakeDigits(std::span<Item> items, std::span<const std::uint64_t> keys, std::uint32_t first);
    void Scatter(std::span<Item> items, const Digits& digits);

    EngineVector<Item> scratch;
    EngineVector<std::uint32_t> places; ///< Start positions of the values of both digits.
};

} // namespace Quon
