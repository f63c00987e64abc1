#include "drivers/openal/LateReverb.h"

#include "drivers/openal/ReverbRecords.h"

#include <algorithm>
#include <cmath>
#include <span>

namespace Quon
{

namespace
{

/// The late reverb of OpenAL Soft 1.19 in steady noise by its decay time, in dB of the one at 1.49 s.
struct LateLevel
{
    float decaySeconds;
    float decibels;
};

constexpr LateLevel oldLateLevels[] = {{0.1F, -68.0F}, {0.17F, -41.0F}, {0.3F, -22.8F}, {0.4F, -16.4F},
    {0.5F, -12.3F}, {0.75F, -6.5F}, {1.0F, -3.3F}, {1.49F, 0.0F}, {2.31F, 2.6F}, {2.91F, 3.7F}, {4.32F, 5.1F},
    {7.24F, 6.2F}, {10.0F, 6.6F}, {17.23F, 7.1F}, {20.0F, 7.3F}};
constexpr float newLateDecibels = 4.0F; ///< The same in newer versions, at any decay time.
constexpr float usualHFRatio = 0.83F; ///< Of all these.
constexpr float maxLateGain = 10.0F;
constexpr float minDecaySeconds = 0.24F; ///< As measured, for shorter times too.

/// Below the difference of the reciprocal decay times at which OpenAL Soft 1.19 terminates the process.
constexpr float maxDifference = 7.9F;

float ToFactor(float decibels)
{
    return std::pow(10.0F, decibels / 20.0F);
}

/// In dB. Interpolates between two rows by the loss per second, which is what decays.
float GetLateDecibels(float decaySeconds)
{
    constexpr std::span levels(oldLateLevels);
    const auto after = std::find_if(levels.begin() + 1, levels.end() - 1,
        [decaySeconds](const LateLevel& row) { return row.decaySeconds >= decaySeconds; });
    const LateLevel& from = *(after - 1);
    const float begin = 1.0F / from.decaySeconds;
    const float share = (1.0F / decaySeconds - begin) / (1.0F / after->decaySeconds - begin);
    return from.decibels + share * (after->decibels - from.decibels);
}

/// By how much faster the high frequencies decay than the others, relative to the maximum.
float GetDifference(float hfRatio, float decaySeconds)
{
    return (1.0F / hfRatio - 1.0F) / decaySeconds / maxDifference;
}

float GetSafeHFRatio(float hfRatio, float decaySeconds)
{
    return std::max(hfRatio, 1.0F / (1.0F + maxDifference * decaySeconds));
}

/// OpenAL attenuates the input by the energy that it expects in the lines, from an average of the decay
/// times. The weight of the high ones and the length of the lines, in seconds, were fitted to the
/// measurements.
float GetExpectedGain(float decaySeconds, float hfRatio, float length)
{
    constexpr float hfWeight = 0.75F;
    constexpr float maxDecaySeconds = 20.0F;
    const float hfSeconds = std::min(decaySeconds * hfRatio, maxDecaySeconds);
    const float average = (1.0F - hfWeight) * decaySeconds + hfWeight * hfSeconds;
    const float loss = std::pow(10.0F, -3.0F * length / average);
    return std::sqrt(1.0F - loss * loss);
}

/// The length of OpenAL's lines, relative to that at full density.
float GetLineLength(float density)
{
    return std::max(std::cbrt(density), 0.1F);
}

/// What that changes in the level when high frequencies decay at another ratio than usual, in dB.
float GetExpectedDecibels(float decaySeconds, float hfRatio, float lineLength)
{
    constexpr float fullSeconds = 0.18F;
    const float lineSeconds = fullSeconds * lineLength;
    const float change = GetExpectedGain(decaySeconds, hfRatio, lineSeconds) /
        GetExpectedGain(decaySeconds, usualHFRatio, lineSeconds);
    return 20.0F * std::log10(change);
}

/// What high frequencies that decay fast change in the level of the others, in dB.
float GetHFDecibels(float decaySeconds, float hfRatio, float lineLength)
{
    constexpr float maxLoss = 12.0F;
    constexpr float shortSeconds = 0.5F;
    const float difference = std::max(GetDifference(hfRatio, decaySeconds), 0.0F);
    const float share = std::min(std::pow(decaySeconds / shortSeconds, 1.5F), 1.0F);
    return GetExpectedDecibels(decaySeconds, hfRatio, lineLength) -
        maxLoss * std::pow(difference, 3.0F) * share * lineLength;
}

/// The loss by the filter for the high frequencies of the room, which reaches down from 5 kHz at 12 dB per
/// octave, in dB. Not more than this is compensated, since lower frequencies do not have it.
float GetRoomHFDecibels(float roomHF)
{
    constexpr float begin = -2000.0F;
    constexpr float end = -4000.0F;
    constexpr float maxLoss = 2.0F;
    return -maxLoss * std::clamp((begin - roomHF) / (begin - end), 0.0F, 1.0F);
}

float GetOldLateDecibels(const FXEnvReverb& room, float decaySeconds, float hfRatio)
{
    constexpr float perLineLength = 7.6F;
    const float density = room.density / 100.0F;
    const float lineLength = GetLineLength(density);
    return GetLateDecibels(decaySeconds) * std::pow(density, 0.25F) + perLineLength * (1.0F - lineLength) +
        GetHFDecibels(decaySeconds, hfRatio, lineLength) + GetRoomHFDecibels(static_cast<float>(room.roomHF));
}

/// By how much more slowly the late reverb decays than is set.
float GetExcess(float decaySeconds, float hfRatio)
{
    constexpr float maxExcess = 0.15F;
    const float share =
        std::clamp(std::min((decaySeconds - 0.3F) / 0.1F, (1.0F - decaySeconds) / 0.35F), 0.0F, 1.0F);
    return maxExcess * share * std::min(hfRatio, 1.0F);
}

/// How much of the level and the decay is compensated. Where high frequencies cannot decay as fast as in the
/// record, it is nothing: a louder late reverb would be heard with the wrong decay.
float GetCompensation(const FXEnvReverb& room)
{
    return std::clamp(2.0F - GetDifference(room.decayHFRatio, room.decayTime), 0.0F, 1.0F);
}

} // namespace

ReverbParameters GetReverbParameters(const FXEnvReverb& room, SoftVersion version)
{
    const bool isOld = version == SoftVersion::Old;
    const float compensation = GetCompensation(room);
    const float decayTime =
        room.decayTime * (1.0F - compensation * GetExcess(room.decayTime, room.decayHFRatio));
    const float hfRatio = GetSafeHFRatio(room.decayHFRatio, decayTime);
    const float level = isOld ? compensation * GetOldLateDecibels(room, decayTime, hfRatio)
                              : newLateDecibels + GetExpectedDecibels(decayTime, hfRatio, 1.0F);
    const float lateGain = ToGain(static_cast<float>(room.reverb)) * ToFactor(-level);
    const float gain = ToGain(static_cast<float>(room.room));
    // By so much the room is louder, and its reflections quieter, for a late reverb beyond OpenAL's range.
    // One that decays too slowly is not to be heard more.
    const bool canRaise = gain > 0.0F && decayTime >= minDecaySeconds;
    const float raise = canRaise ? std::clamp(lateGain / maxLateGain, 1.0F, 1.0F / gain) : 1.0F;
    return {gain * raise, ToGain(static_cast<float>(room.reflections)) / raise,
        std::min(lateGain / raise, maxLateGain), decayTime, hfRatio};
}

} // namespace Quon
