#include "drivers/openal/ReverbRecords.h"

#include "drivers/openal/effects/Units.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <tuple>

namespace Quon
{

namespace
{

constexpr std::int32_t silence = -10000;

/// A room like any other. Not the library's default, which a game can change, and to anything.
constexpr FXEnvReverb fallback = {
    -1000, -100, 0.0f, 1.49f, 0.83f, -2602, 0.007f, 200, 0.011f, 100.0f, 100.0f, 5000.0f};

// Of AL_EAXREVERB_REFLECTIONS_GAIN, 3.16, and of AL_EAXREVERB_LATE_REVERB_GAIN, 10.
constexpr std::int32_t loudestReflections = 1000;
constexpr std::int32_t loudestReverb = 2000;

/// The late reverb of OpenAL in steady noise by its decay time, in dB of the one at 1.49 s.
struct LateLevel
{
    float decaySeconds;
    float decibels;
};

constexpr LateLevel lateLevels[] = {{0.1f, -68.0f}, {0.17f, -41.0f}, {0.3f, -22.8f}, {0.4f, -16.4f},
    {0.5f, -12.3f}, {0.75f, -6.5f}, {1.0f, -3.3f}, {1.49f, 0.0f}, {2.31f, 2.6f}, {2.91f, 3.7f}, {4.32f, 5.1f},
    {7.24f, 6.2f}, {10.0f, 6.6f}, {17.23f, 7.1f}, {20.0f, 7.3f}};
constexpr float loudestLateGain = 10.0f;

std::int32_t HoldLevel(std::int32_t level, std::int32_t loudest = 0)
{
    return std::clamp(level, silence, loudest);
}

/// Something in the way: `all` of its level from high frequencies, a part of it from the low ones.
float GetLow(std::int32_t all, float lowRatio)
{
    return static_cast<float>(all) * lowRatio;
}

float GetHigh(std::int32_t all, float lowRatio)
{
    return static_cast<float>(all) * (1.0f - lowRatio);
}

/// In dB; between two rows it goes by the loss in a second, which is what decays.
float GetLateDecibels(float decaySeconds)
{
    const auto* const after = std::find_if(std::begin(lateLevels) + 1, std::end(lateLevels) - 1,
        [decaySeconds](const LateLevel& row) { return row.decaySeconds >= decaySeconds; });
    const LateLevel& from = *(after - 1);
    const float begin = 1.0f / from.decaySeconds;
    const float share = (1.0f / decaySeconds - begin) / (1.0f / after->decaySeconds - begin);
    return from.decibels + share * (after->decibels - from.decibels);
}

auto GetFields(const FXEnvReverb& room)
{
    return std::tie(room.room, room.roomHF, room.roomRolloffFactor, room.decayTime, room.decayHFRatio,
        room.reflections, room.reflectionsDelay, room.reverb, room.reverbDelay, room.diffusion, room.density,
        room.hfReference);
}

} // namespace

FXEnvReverb HoldReverb(const FXEnvReverb& wanted)
{
    FXEnvReverb held = wanted;
    held.room = HoldLevel(wanted.room);
    held.roomHF = HoldLevel(wanted.roomHF);
    held.roomRolloffFactor = Hold(wanted.roomRolloffFactor, 0.0f, 10.0f, fallback.roomRolloffFactor);
    held.decayTime = Hold(wanted.decayTime, 0.1f, 20.0f, fallback.decayTime);
    held.decayHFRatio = Hold(wanted.decayHFRatio, 0.1f, 2.0f, fallback.decayHFRatio);
    held.reflections = HoldLevel(wanted.reflections, loudestReflections);
    held.reflectionsDelay = Hold(wanted.reflectionsDelay, 0.0f, 0.3f, fallback.reflectionsDelay);
    held.reverb = HoldLevel(wanted.reverb, loudestReverb);
    held.reverbDelay = Hold(wanted.reverbDelay, 0.0f, 0.1f, fallback.reverbDelay);
    held.diffusion = Hold(wanted.diffusion, 0.0f, 100.0f, fallback.diffusion);
    held.density = Hold(wanted.density, 0.0f, 100.0f, fallback.density);
    held.hfReference = Hold(wanted.hfReference, 1000.0f, 20000.0f, fallback.hfReference);
    return held;
}

bool IsSame(const FXEnvReverb& one, const FXEnvReverb& other)
{
    return GetFields(one) == GetFields(other);
}

FXEnvReverbSourceProperties HoldProperties(const FXEnvReverbSourceProperties& wanted)
{
    return {HoldLevel(wanted.direct), HoldLevel(wanted.directHF), HoldLevel(wanted.room),
        HoldLevel(wanted.roomHF), Hold(wanted.roomRolloffFactor, 0.0f, 10.0f, 0.0f),
        HoldLevel(wanted.obstructionHF), Hold(wanted.obstructionLFRatio, 0.0f, 1.0f, 0.0f),
        HoldLevel(wanted.occlusionHF), Hold(wanted.occlusionLFRatio, 0.0f, 1.0f, 0.0f)};
}

float ToGain(float hundredths)
{
    return hundredths <= static_cast<float>(silence) ? 0.0f : std::pow(10.0f, hundredths / 2000.0f);
}

float GetLateGain(const FXEnvReverb& room)
{
    const float shorter = std::pow(room.density / 100.0f, 0.25f);
    const float missing = -GetLateDecibels(room.decayTime) * shorter;
    return std::min(
        ToGain(static_cast<float>(room.reverb)) * std::pow(10.0f, missing / 20.0f), loudestLateGain);
}

PathGain GetDirectGain(const FXEnvReverbSourceProperties& properties)
{
    const auto& p = properties;
    return {ToGain(static_cast<float>(p.direct) + GetLow(p.obstructionHF, p.obstructionLFRatio) +
                GetLow(p.occlusionHF, p.occlusionLFRatio)),
        ToGain(static_cast<float>(p.directHF) + GetHigh(p.obstructionHF, p.obstructionLFRatio) +
            GetHigh(p.occlusionHF, p.occlusionLFRatio))};
}

PathGain GetRoomGain(const FXEnvReverbSourceProperties& properties)
{
    const auto& p = properties;
    return {ToGain(static_cast<float>(p.room) + GetLow(p.occlusionHF, p.occlusionLFRatio)),
        ToGain(static_cast<float>(p.roomHF) + GetHigh(p.occlusionHF, p.occlusionLFRatio))};
}

} // namespace Quon
