#include "drivers/openal/ReverbRecords.h"

#include "drivers/openal/effects/Defaults.h"
#include "drivers/openal/effects/Units.h"

#include <algorithm>
#include <cmath>
#include <span>
#include <tuple>

namespace Quon
{

namespace
{

constexpr std::int32_t silence = -10000;

/// A generic room. Not the library's default, which a game can change to anything.
constexpr FXEnvReverb fallback = {
    -1000, -100, 0.0F, 1.49F, 0.83F, -2602, 0.007F, 200, 0.011F, 100.0F, 100.0F, 5000.0F};

/// The late reverb of OpenAL in steady noise by its decay time, in dB of the one at 1.49 s in version 1.19.
struct LateLevel
{
    float decaySeconds;
    float decibels;
};

constexpr LateLevel oldLateLevels[] = {{0.1F, -68.0F}, {0.17F, -41.0F}, {0.3F, -22.8F}, {0.4F, -16.4F},
    {0.5F, -12.3F}, {0.75F, -6.5F}, {1.0F, -3.3F}, {1.49F, 0.0F}, {2.31F, 2.6F}, {2.91F, 3.7F}, {4.32F, 5.1F},
    {7.24F, 6.2F}, {10.0F, 6.6F}, {17.23F, 7.1F}, {20.0F, 7.3F}};
constexpr LateLevel newLateLevels[] = {{0.1F, 4.4F}, {0.5F, 4.4F}, {1.0F, 4.2F}, {1.49F, 3.9F}, {2.31F, 3.5F},
    {2.91F, 3.2F}, {4.32F, 2.6F}, {7.24F, 1.7F}, {10.0F, 1.1F}, {17.23F, 0.1F}, {20.0F, -0.2F}};
constexpr float loudestLateGain = 10.0F;

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

/// In dB. Interpolates between two rows by the loss per second, which is what decays.
float GetLateDecibels(std::span<const LateLevel> levels, float decaySeconds)
{
    const auto after = std::find_if(levels.begin() + 1, levels.end() - 1,
        [decaySeconds](const LateLevel& row) { return row.decaySeconds >= decaySeconds; });
    const LateLevel& from = *(after - 1);
    const float begin = 1.0F / from.decaySeconds;
    const float share = (1.0F / decaySeconds - begin) / (1.0F / after->decaySeconds - begin);
    return from.decibels + share * (after->decibels - from.decibels);
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

float GetLateGain(const FXEnvReverb& room, SoftVersion version)
{
    const float missing = version == SoftVersion::Old
        ? -GetLateDecibels(oldLateLevels, room.decayTime) * std::pow(room.density / 100.0F, 0.25F)
        : -GetLateDecibels(newLateLevels, room.decayTime);
    return std::min(
        ToGain(static_cast<float>(room.reverb)) * std::pow(10.0F, missing / 20.0F), loudestLateGain);
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
