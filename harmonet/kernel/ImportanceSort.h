#pragma once

#include "harmonet/engine/Alloc.h"

#include <cstdint>
#include <span>

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

    /// Fills `items`, of which there are as many as keys, with the numbers of the keys in order. The first
    /// key has the number `first`.
    void Sort(std::span<Item> items, std::span<const std::uint64_t> keys, std::uint32_t first);

private:
    /// The two digits that are sorted by, of the lower and the higher bits of Item::digits.
    struct Digits
    {
        int lowBits;
        int highBits;
        bool areAll; ///< The keys do not differ in anything else.
    };

    static Digits TakeDigits(std::span<Item> items, std::span<const std::uint64_t> keys, std::uint32_t first);
    void Scatter(std::span<Item> items, const Digits& digits);

    EngineVector<Item> scratch;
    EngineVector<std::uint32_t> places; ///< Of the values of both digits.
};

} // namespace Quon
