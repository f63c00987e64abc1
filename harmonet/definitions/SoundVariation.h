#pragma once

#include "harmonet/engine/Alloc.h"
#include "harmonet/engine/PString.h"

#include <cstdint>

namespace Quon
{

/// The order in which a sound's files are selected at its starts.
enum class VariantOrder : std::uint8_t
{
    Random, ///< Random, without immediate repetition.
    Sequence ///< One after the other, in the order of the definition.
};

/// The sound that is dropped when a definition has reached its maximum number of instances.
enum class SoundStealing : std::uint8_t
{
    Oldest, ///< The sound started first.
    Quietest, ///< The sound with the lowest level at the listener, which can be the new one.
    None ///< The new sound, which does not start.
};

/// The variation between the starts of one definition.
struct SoundVariation
{
    EngineVector<PString> variants; ///< Sound files in addition to SoundResource::GetFileName().
    VariantOrder order = VariantOrder::Random; ///< How the next one is chosen.
    float minGainDb = 0.0F; ///< Minimum of the decibels added to the gain. The result is at most a gain of 1.
    float maxGainDb = 0.0F; ///< Maximum of that.
    float minFrequencyFactor = 1.0F; ///< Minimum of the factor on the rate.
    float maxFrequencyFactor = 1.0F; ///< Maximum of that.

    /// Whether two starts can differ, in gain, in rate, or in anything.
    bool VariesGain() const { return minGainDb != 0.0F || maxGainDb != 0.0F; }
    bool VariesFrequency() const { return minFrequencyFactor != 1.0F || maxFrequencyFactor != 1.0F; }
    bool VariesAnything() const { return !variants.empty() || VariesGain() || VariesFrequency(); }
};

/// Limits the sounds of one definition. They apply to the whole game, across groups.
struct SoundLimits
{
    int maxInstances = 0; ///< Maximum number of running sounds; 0 for no limit.
    SoundStealing stealing = SoundStealing::Oldest; ///< Which sound gives way when there are too many.
    int minIntervalMs = 0; ///< Minimum time between two starts.

    /// Whether a start can be refused.
    bool LimitsAnything() const { return maxInstances > 0 || minIntervalMs > 0; }
};

} // namespace Quon
