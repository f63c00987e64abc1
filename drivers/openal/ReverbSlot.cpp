#include "drivers/openal/ReverbSlot.h"

#include "drivers/openal/LateReverb.h"

#include <algorithm>

namespace Quon
{

namespace
{

void Fill(const EfxFunctions& efx, ALuint effect, const FXEnvReverb& room, float rolloff)
{
    constexpr float percent = 0.01F;
    const ReverbParameters parameters = GetReverbParameters(room, efx.version);
    efx.effecti(effect, AL_EFFECT_TYPE, AL_EFFECT_EAXREVERB);
    efx.effecti(effect, AL_EAXREVERB_DECAY_HFLIMIT, AL_FALSE);
    efx.effectf(effect, AL_EAXREVERB_GAIN, parameters.gain);
    efx.effectf(effect, AL_EAXREVERB_GAINHF, ToGain(static_cast<float>(room.roomHF)));
    efx.effectf(effect, AL_EAXREVERB_GAINLF, 1.0F);
    efx.effectf(effect, AL_EAXREVERB_ROOM_ROLLOFF_FACTOR, rolloff);
    efx.effectf(effect, AL_EAXREVERB_DECAY_TIME, parameters.decayTime);
    efx.effectf(effect, AL_EAXREVERB_DECAY_HFRATIO, parameters.decayHFRatio);
    // OpenAL's upper limit is rounded down from 10 dB.
    efx.effectf(effect, AL_EAXREVERB_REFLECTIONS_GAIN,
        std::min(parameters.reflectionsGain, AL_EAXREVERB_MAX_REFLECTIONS_GAIN));
    efx.effectf(effect, AL_EAXREVERB_REFLECTIONS_DELAY, room.reflectionsDelay);
    efx.effectf(effect, AL_EAXREVERB_LATE_REVERB_GAIN, parameters.lateGain);
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
    // Longer than any device takes to mix the last step of the fade-out.
    constexpr std::int64_t lingerMs = 100;
    fadeOut.Start(begin, length);
    linger = lingerMs * ticksPerSecond / 1000;
}

void ReverbSlot::Return()
{
    fadeOut.Cancel();
    SetLevel(1.0F);
}

void ReverbSlot::Apply()
{
    if (slot == 0) {
        return;
    }
    // The slot copies the effect's parameters.
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
    if (level == 0.0F && fadeOut.IsOver(time - linger)) {
        isEmpty = true;
        fadeOut.Cancel();
        if (slot != 0) {
            efx.sloti(slot, AL_EFFECTSLOT_EFFECT, AL_EFFECT_NULL);
        }
        return;
    }
    SetLevel(fadeOut.GetLevel(time));
}

} // namespace Quon
