#include "drivers/openal/ReverbSlot.h"

#include <algorithm>

namespace Quon
{

namespace
{

// OpenAL Soft 1.19 ends the process when high frequencies would decay by so much faster than the rest that
// its filter has to close: by a difference of the reciprocal times in seconds of 7.92 or more, measured. Of
// the presets one changes, by a hundredth.
float GetSafeHFRatio(const FXEnvReverb& room)
{
    constexpr float mostDifference = 7.9F;
    return std::max(room.decayHFRatio, 1.0F / (1.0F + mostDifference * room.decayTime));
}

void Fill(const EfxFunctions& efx, ALuint effect, const FXEnvReverb& room, float rolloff)
{
    const auto gain = [](std::int32_t level) { return ToGain(static_cast<float>(level)); };
    constexpr float percent = 0.01F;
    efx.effecti(effect, AL_EFFECT_TYPE, AL_EFFECT_EAXREVERB);
    efx.effecti(effect, AL_EAXREVERB_DECAY_HFLIMIT, AL_FALSE);
    efx.effectf(effect, AL_EAXREVERB_GAIN, gain(room.room));
    efx.effectf(effect, AL_EAXREVERB_GAINHF, gain(room.roomHF));
    efx.effectf(effect, AL_EAXREVERB_GAINLF, 1.0F);
    efx.effectf(effect, AL_EAXREVERB_ROOM_ROLLOFF_FACTOR, rolloff);
    efx.effectf(effect, AL_EAXREVERB_DECAY_TIME, room.decayTime);
    efx.effectf(effect, AL_EAXREVERB_DECAY_HFRATIO, GetSafeHFRatio(room));
    // OpenAL's upper limit is rounded down from 10 dB.
    efx.effectf(effect, AL_EAXREVERB_REFLECTIONS_GAIN,
        std::min(gain(room.reflections), AL_EAXREVERB_MAX_REFLECTIONS_GAIN));
    efx.effectf(effect, AL_EAXREVERB_REFLECTIONS_DELAY, room.reflectionsDelay);
    efx.effectf(effect, AL_EAXREVERB_LATE_REVERB_GAIN, GetLateGain(room, efx.version));
    efx.effectf(effect, AL_EAXREVERB_LATE_REVERB_DELAY, room.reverbDelay);
    efx.effectf(effect, AL_EAXREVERB_DIFFUSION, room.diffusion * percent);
    efx.effectf(effect, AL_EAXREVERB_DENSITY, room.density * percent);
    efx.effectf(effect, AL_EAXREVERB_HFREFERENCE, room.hfReference);
}

} // namespace

bool ReverbSlot::Create(const EfxFunctions& functions, Rolloff newRolloff)
{
    efx = functions;
    rolloff = newRolloff;
    alGetError();
    efx.genSlots(1, &slot);
    if (alGetError() != AL_NO_ERROR) {
        slot = 0;
        return false;
    }
    efx.sloti(slot, AL_EFFECTSLOT_AUXILIARY_SEND_AUTO, rolloff == Rolloff::OfRoom ? AL_TRUE : AL_FALSE);
    if (!isEmpty) {
        Apply();
    }
    return true;
}

void ReverbSlot::Destroy()
{
    if (slot != 0) {
        efx.deleteSlots(1, &slot);
        slot = 0;
    }
}

void ReverbSlot::Load(const FXEnvReverb& newRoom)
{
    room = newRoom;
    isEmpty = false;
    Return();
    Apply();
}

void ReverbSlot::Leave(std::int64_t begin, std::int64_t length, std::int64_t ticksPerSecond)
{
    // Longer than it takes any device to mix the last step of the fall.
    constexpr std::int64_t lingerMs = 100;
    fall.Start(begin, length);
    linger = lingerMs * ticksPerSecond / 1000;
}

void ReverbSlot::Return()
{
    fall.Cancel();
    SetLevel(1.0F);
}

void ReverbSlot::Apply()
{
    if (slot == 0) {
        return;
    }
    // The slot copies what stands in the effect.
    ALuint effect = 0;
    efx.genEffects(1, &effect);
    Fill(efx, effect, room, GetRolloffFactor());
    efx.sloti(slot, AL_EFFECTSLOT_EFFECT, static_cast<ALint>(effect));
    efx.deleteEffects(1, &effect);
    efx.slotf(slot, AL_EFFECTSLOT_GAIN, level);
}

// With Rolloff::OfSource a new OpenAL goes by this factor too, and an old one by that of each source.
float ReverbSlot::GetRolloffFactor() const
{
    return rolloff == Rolloff::OfRoom ? room.roomRolloffFactor
                                      : std::min(sourceRolloff, AL_EAXREVERB_MAX_ROOM_ROLLOFF_FACTOR);
}

void ReverbSlot::SetSourceRolloff(float factor)
{
    if (factor != sourceRolloff) {
        sourceRolloff = factor;
        if (!isEmpty) {
            Apply();
        }
    }
}

void ReverbSlot::SetLevel(float newLevel)
{
    if (newLevel != level) {
        level = newLevel;
        if (slot != 0) {
            efx.slotf(slot, AL_EFFECTSLOT_GAIN, level);
        }
    }
}

void ReverbSlot::Tick(std::int64_t time)
{
    if (isEmpty) {
        return;
    }
    if (level == 0.0F && fall.IsOver(time - linger)) {
        isEmpty = true;
        fall.Cancel();
        if (slot != 0) {
            efx.sloti(slot, AL_EFFECTSLOT_EFFECT, AL_EFFECT_NULL);
        }
        return;
    }
    SetLevel(fall.GetLevel(time));
}

} // namespace Quon
