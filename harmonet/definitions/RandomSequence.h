#pragma once

#include <cstdint>
#include <string_view>

namespace Quon
{

/// Random numbers that are the same on every platform for the same seed and names. SplitMix64 (Steele, Lea
/// and Flood, "Fast splittable pseudorandom number generators", 2014), with FNV-1a over the names.
class RandomSequence
{
public:
    RandomSequence(std::uint64_t seed, std::string_view owner, std::string_view name)
        : state(seed)
    {
        std::uint64_t hash = 0xCBF29CE484222325;
        for (const std::string_view text : {owner, std::string_view("/"), name}) {
            for (const char letter : text) {
                hash = (hash ^ static_cast<unsigned char>(letter)) * 0x100000001B3;
            }
        }
        state = Next() ^ hash;
    }

    /// Returns 0 to `count` - 1. `count` must not be 0.
    std::uint32_t NextBelow(std::uint32_t count)
    {
        return static_cast<std::uint32_t>(((Next() >> 32) * count) >> 32);
    }

    /// Returns a number from 0 to below 1, in steps of 2^-24, which a float represents exactly.
    double NextUnit() { return static_cast<double>(Next() >> 40) * 0x1p-24; }

private:
    std::uint64_t Next()
    {
        state += 0x9E3779B97F4A7C15;
        std::uint64_t mixed = state;
        mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9;
        mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EB;
        return mixed ^ (mixed >> 31);
    }

    std::uint64_t state;
};

} // namespace Quon
