#pragma once

#include "harmonet/voices/Mask.h"

#include <bit>
#include <cstdint>

namespace Quon
{

/// The weighted squared distance. A distance of 0 stays 0, whatever the weight.
constexpr float WeightDistance(float distSqr, float multiplier)
{
    return Select(Mask(distSqr == 0.0F), 0.0F, multiplier * distSqr);
}

/// The importance of a sound as a number: a greater key is more important. A higher priority comes first;
/// among equal priorities, a smaller distance does. This is the only place that defines the order.
constexpr std::uint64_t ImportanceKey(std::int32_t priority, float distance)
{
    constexpr std::uint32_t signBit = 0x80000000;
    constexpr int wordBits = 32;
    // The bits of a float, negative ones turned round, are an integer in the order of the values; adding 0
    // turns -0 into 0.
    const auto bits = std::bit_cast<std::int32_t>(distance + 0.0F);
    const auto descending = static_cast<std::uint32_t>(bits ^ (~(bits >> 31) & 0x7FFFFFFF));
    const std::uint32_t high = static_cast<std::uint32_t>(priority) ^ signBit;
    return static_cast<std::uint64_t>(high) << wordBits | descending;
}

} // namespace Quon
