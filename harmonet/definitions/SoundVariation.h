#pragma once

#include "harmonet/engine/Alloc.h"
#include "harmonet/engine/PString.h"

#include <cstdint>

namespace Quon
{

/// Which of its files a sound takes at a start.
enum class VariantOrder : std::uint8_t
{
    Random, ///< At random, and never the same twice in a row.
    Sequence ///< In turn, in the order in which they stand in the definition.
};

/// Which sound gives way when a definition has as many instances as it may have.
enum class SoundStealing : std::uint8_t
{
    Oldest, ///< The one that was started first.
    Quietest, ///< The one of the lowest level at the listener; the new one, if that is it.
    None ///< The new one, which does not start.
};

/// What differs from start to start of one definition.
struct SoundVariation
{
    EngineVector<PString> variants; ///< Sound files besides SoundResource::GetFileName().
    VariantOrder order = VariantOrder::Random; ///< How the next one is chosen.
    float minGainDb = 0.0F; ///< Minimum of what is added to the gain; the sum is at most a gain of 1.
    float maxGainDb = 0.0F; ///< Maximum of that.
    float minFrequencyFactor = 1.0F; ///< Minimum of the factor on the rate.
    float maxFrequencyFactor = 1.0F; ///< Maximum of that.

    /// Whether two starts can differ, in gain, in rate, or in anything.
    bool VariesGain() const { return minGainDb != 0.0F || maxGainDb != 0.0F; }
    bool VariesFrequency() const { return minFrequencyFactor != 1.0F || maxFrequencyFactor != 1.0F; }
    bool VariesAnything() const { return !variants.empty() || VariesGain() || VariesFrequency(); }
};

/// How often one definition may be heard. Counts and times are those of the whole game, whatever the group.
struct SoundLimits
{
    int maxInstances = 0; ///< Sounds that run at once; 0 for any number.
    SoundStealing stealing = SoundStealing::Oldest; ///< Which sound gives way when there are too many.
    int minIntervalMs = 0; ///< Between two starts.

    /// Whether a start can be refused.
    bool LimitsAnything() const { return maxInstances > 0 || minIntervalMs > 0; }
};

} // namespace Quon
