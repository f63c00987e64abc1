#include "drivers/openal/ReverbRecords.h"

#include "drivers/openal/effects/Defaults.h"
#include "drivers/openal/effects/Units.h"

#include <algorithm>
#include <cmath>
#include <tuple>

namespace Quon
{

namespace
{

constexpr std::int32_t silence = -10000;

/// A generic room. Not the library's default, which a game can change to anything.
constexpr FXEnvReverb fallback = {
    -1000, -100, 0.0F, 1.49F, 0.83F, -2602, 0.007F, 200, 0.011F, 100.0F, 100.0F, 5000.0F};

std::int32_t ClampLevel(std::int32_t level)
{
    return std::clamp(level, silence, std::int32_t{0});
}

/// An obstacle attenuates high frequencies by `all` and low ones by the part `lowRatio` of it. GetLow() is
/// the attenuation of all frequencies, GetHigh() the additional one of high frequencies.
float GetLow(std::int32_t all, float lowRatio)
{
    return static_cast<float>(all) * lowRatio;
}

float GetHigh(std::int32_t all, float lowRatio)
{
    return static_cast<float>(all) * (1.0F - lowRatio);
}

auto GetFields(const FXEnvReverb& room)
{
    return std::tie(room.room, room.roomHF, room.roomRolloffFactor, room.decayTime, room.decayHFRatio,
        room.reflections, room.reflectionsDelay, room.reverb, room.reverbDelay, room.diffusion, room.density,
        room.hfReference);
}

} // namespace

FXEnvReverb ClampReverb(const FXEnvReverb& wanted)
{
    FXEnvReverb clamped = ClampToRanges(SndFXEnvReverb, wanted, fallback);
    // Of AL_EAXREVERB_HFREFERENCE.
    constexpr float lowestReferenceHz = 1000.0F;
    clamped.hfReference = std::max(clamped.hfReference, lowestReferenceHz);
    return clamped;
}

bool IsSame(const FXEnvReverb& one, const FXEnvReverb& other)
{
    return GetFields(one) == GetFields(other);
}

FXEnvReverbSourceProperties ClampProperties(const FXEnvReverbSourceProperties& wanted)
{
    return {ClampLevel(wanted.direct), ClampLevel(wanted.directHF), ClampLevel(wanted.room),
        ClampLevel(wanted.roomHF), ClampOr(wanted.roomRolloffFactor, 0.0F, 10.0F, 0.0F),
        ClampLevel(wanted.obstructionHF), ClampOr(wanted.obstructionLFRatio, 0.0F, 1.0F, 0.0F),
        ClampLevel(wanted.occlusionHF), ClampOr(wanted.occlusionLFRatio, 0.0F, 1.0F, 0.0F)};
}

float ToGain(float hundredths)
{
    return hundredths <= static_cast<float>(silence) ? 0.0F : std::pow(10.0F, hundredths / 2000.0F);
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
