#pragma once

#include "harmonet/engine/Alloc.h"

#include <algorithm>
#include <bit>
#include <cstdint>

namespace Quon
{

/// A hash table of numbers, with linear probing. The caller knows what each number refers to, and computes
/// its hash, whose high bits must be well distributed.
class HashIndex
{
public:
    static constexpr std::uint32_t none = 0xFFFFFFFF;

    /// Returns the number with that hash for which `matches` is true, or none.
    template<class Matches>
    std::uint32_t Find(std::uint32_t hash, Matches matches) const
    {
        if (slots.empty()) {
            return none;
        }
        for (std::size_t slot = HomeOf(hash); slots[slot] != none; slot = GetNext(slot)) {
            if (matches(slots[slot])) {
                return slots[slot];
            }
        }
        return none;
    }

    /// Allocates memory for one more number, so that Add() cannot fail. Shrinks the table if it is nearly
    /// empty.
    template<class HashOf>
    void Reserve(HashOf hashOf)
    {
        constexpr std::size_t sparse = 16;
        if (4 * (count + 1) > 3 * slots.size()) {
            Resize(2 * slots.size(), hashOf);
        }
        else if (sparse * (count + 1) < slots.size()) {
            Resize(slots.size() / 2, hashOf);
        }
    }
    /// Adds a number that is not in the table. Call Reserve() before.
    void Add(std::uint32_t number, std::uint32_t hash)
    {
        ++count;
        Enter(number, hash);
    }
    /// Removes a number that is in the table, and moves later numbers into the gap that a search would
    /// otherwise not reach.
    template<class HashOf>
    void Remove(std::uint32_t number, HashOf hashOf)
    {
        std::size_t gap = HomeOf(hashOf(number));
        while (slots[gap] != number) {
            gap = GetNext(gap);
        }
        const std::size_t mask = slots.size() - 1;
        for (std::size_t slot = GetNext(gap); slots[slot] != none; slot = GetNext(slot)) {
            if (((slot - HomeOf(hashOf(slots[slot]))) & mask) >= ((slot - gap) & mask)) {
                slots[gap] = slots[slot];
                gap = slot;
            }
        }
        slots[gap] = none;
        --count;
    }

private:
    std::size_t HomeOf(std::uint32_t hash) const { return hash >> shift; }
    std::size_t GetNext(std::size_t slot) const { return (slot + 1) & (slots.size() - 1); }

    void Enter(std::uint32_t number, std::uint32_t hash)
    {
        std::size_t slot = HomeOf(hash);
        while (slots[slot] != none) {
            slot = GetNext(slot);
        }
        slots[slot] = number;
    }

    template<class HashOf>
    void Resize(std::size_t newSize, HashOf hashOf)
    {
        constexpr std::size_t minSize = 64;
        newSize = std::max(newSize, minSize);
        if (newSize == slots.size()) {
            return;
        }
        EngineVector<std::uint32_t> old(newSize, none);
        old.swap(slots);
        shift = 32 - std::countr_zero(newSize);
        for (const std::uint32_t number : old) {
            if (number != none) {
                Enter(number, hashOf(number));
            }
        }
    }

    EngineVector<std::uint32_t> slots; ///< At most three quarters full; their number is a power of two.
    std::size_t count = 0;
    int shift = 0; ///< Leaves as many bits of a hash as there are slots.
};

} // namespace Quon
