#include "drivers/openal/ReverbRecords.h"

#include "drivers/openal/effects/Units.h"

#include <algorithm>
#include <cmath>
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
