#include "drivers/openal/OpenALChannel.h"

#include "drivers/openal/Feeder.h"
#include "drivers/openal/OutputDevice.h"
#include "drivers/openal/SteadyTime.h"
#include "drivers/openal/VoicePool.h"
#include "harmonet/files/SndFile.h"

#include <algorithm>
#include <cmath>

namespace Quon
{

namespace
{

constexpr std::int64_t microsecondsPerMillisecond = 1000;
constexpr std::int64_t nanosecondsPerMicrosecond = 1000;
/// A live sound is queued by another thread, with a delay.
constexpr std::int64_t feederMicroseconds = 10000;
/// A fade ends with the block mixed at that time.
constexpr int lastBlockMs = 10;

} // namespace

OpenALChannel::OpenALChannel(const ChannelServices& channelServices)
    : services(channelServices)
    , acoustics(channelServices.acoustics)
{
}

bool OpenALChannel::Prepare(unsigned int flags, SndFile* file, const SndFXList& effects)
{
    const SyncLock lock(chanLock);
    const ContextScope scope(services.device);
    Voice* const newVoice = services.voices.Take();
    if (!newVoice) {
        return false;
    }
    positional = flags & ChanPositional;
    position = {};
    range = {0.0F, 0.0F, (flags & ChanCutOut) != 0};
    cone = {};
    newVoice->Begin(positional);
    if (positional) {
        newVoice->SetRolloffFactor(services.listener.rolloffFactor);
    }
    const bool looping = flags & ChanLooping;
    SetSndFile(file);
    feed.Start({positional ? 1 : 2, looping, services.device.GetRateHz(), services.options.rateGrade,
                   services.options.handoverFadeMs},
        *file, effects);
    hasEffects = !feed.GetReader().GetEffects().IsEmpty();
    const std::scoped_lock outputLock(outputMutex);
    voice = newVoice;
    acoustics.Begin(voice->GetSource(), positional, flags & ChanDisableMicFX, effects);
    steps.Clear();
    heardMap.Clear();
    passLength = looping ? std::max(file->GetLoopEnd() - file->GetLoopStart(), 0) : 0;
    afterLoop = looping ? file->GetSoundSamples() - file->GetLoopEnd() : 0;
    fileRateHz = file->GetSampleFrequency();
    convertedHz = feed.IsConverting() ? feed.GetBlockHz() : 0;
    playback = {};
    start = {};
    isExhausted = false;
    gain = 1.0F;
    isCutOut = false;
    fadeOut.Cancel();
    UpdateFileEnd();
    state = State::Ready;
    return true;
}

void OpenALChannel::Play()
{
    if (state == State::Ready) {
        if (!start.isKept) {
            start.time = services.startTimes.GetMachineTime(GetSteadyNanoseconds());
        }
        {
            // The sound may have moved to its start position after the channel was created.
            const SyncLock lock(chanLock);
            const std::scoped_lock outputLock(outputMutex);
            UpdateFileEnd();
        }
        state = State::Playing;
        isPumped = true;
        WakeFeeder();
    }
}

void OpenALChannel::SetStartTime(std::int64_t gameMicroseconds, std::int64_t agoMicroseconds)
{
    if (state != State::Ready || !services.options.keepsStartTimes) {
        return;
    }
    const std::int64_t latency = services.startTimes.GetLatency() + feederMicroseconds;
    start.isKept = true;
    start.time = GetSteadyNanoseconds() + (latency - agoMicroseconds) * nanosecondsPerMicrosecond;
    start.delay = services.startTimes.GetDelay(gameMicroseconds);
}

void OpenALChannel::WakeFeeder()
{
    if (services.feeder) {
        services.feeder->Wake();
    }
}

void OpenALChannel::Stop()
{
    if (state != State::Ready && state != State::Playing) {
        return;
    }
    const bool isTaken = services.voices.IsDeferred();
    GiveBackVoice(true, isTaken ? services.options.handoverFadeMs : 0);
    state = State::Free;
}

void OpenALChannel::GiveBackVoice(bool isCutOff, int fadeMs)
{
    isPumped = false;
    const SyncLock lock(chanLock);
    const ContextScope scope(services.device);
    const std::scoped_lock outputLock(outputMutex);
    PutFilesBack();
    QueueFadeOut(std::int64_t{fadeMs + lastBlockMs} * microsecondsPerMillisecond);
    feed.Finish();
    acoustics.End(isCutOff);
    const std::int64_t fadeTicks = fadeMs * services.device.GetTicksPerSecond() / 1000;
    services.voices.Retire(std::exchange(voice, nullptr), fadeTicks);
}

void OpenALChannel::PutFilesBack()
{
    const auto heard = std::llround(GetStreamDue());
    SetSndFile(feed.GetReader().PutBack(steps, GetSndFile(), heard));
    steps.Clear();
}

void OpenALChannel::FadeIn(int ms)
{
    const SyncLock lock(chanLock);
    feed.FadeIn(ms);
}

void OpenALChannel::FadeOut(int ms)
{
    const std::scoped_lock outputLock(outputMutex);
    const std::int64_t length = std::int64_t{std::max(ms, 0)} * services.device.GetTicksPerSecond() / 1000;
    fadeOut.Start(services.device.GetTime(), length);
}

void OpenALChannel::SkipFade(int ms)
{
    const SyncLock lock(chanLock);
    const std::scoped_lock outputLock(outputMutex);
    if (fadeOut.IsRunning()) {
        fadeOut.Skip(std::int64_t{ms} * services.device.GetTicksPerSecond() / 1000);
        ApplyGain(services.device.GetTime());
    }
    else {
        feed.SkipFadeIn(ms);
    }
}

unsigned long OpenALChannel::GetRemainLength()
{
    const ContextScope scope(services.device);
    const std::scoped_lock outputLock(outputMutex);
    if (!voice) {
        return 0;
    }
    const std::int64_t end = steps.IsEmpty() ? fileEnd : steps.GetOldest().oldEnd;
    std::int64_t left = end - static_cast<std::int64_t>(GetStreamHeard());
    // Reading can be one or more passes of a loop ahead of playback.
    if (passLength > 0 && left > 0) {
        left -= std::min((left - 1) / passLength, wraps) * passLength;
    }
    return ToMilliseconds(left + afterLoop, fileRateHz);
}

void OpenALChannel::SetGain(float newGain)
{
    if (std::isnan(newGain)) {
        return;
    }
    const ContextScope scope(services.device);
    const std::scoped_lock outputLock(outputMutex);
    gain = std::clamp(newGain, 0.0F, 1.0F);
    ApplyGain(services.device.GetTime());
}

void OpenALChannel::SetPosition(const Vector3& newPosition)
{
    if (!positional || !TakePosition(newPosition, position)) {
        return;
    }
    const ContextScope scope(services.device);
    const std::scoped_lock outputLock(outputMutex);
    if (voice) {
        voice->SetPosition(position);
        UpdateCutOut();
    }
}

void OpenALChannel::SetMinMaxDistance(float minDistance, float maxDistance, bool cutout)
{
    if (!positional || !TakeDistances(minDistance, maxDistance, cutout, range)) {
        return;
    }
    const ContextScope scope(services.device);
    const std::scoped_lock outputLock(outputMutex);
    if (voice) {
        voice->SetDistances(range.minDistance, range.maxDistance);
        UpdateCutOut();
    }
}

void OpenALChannel::SetCone(float innerAngle, float outerAngle, float outerGain)
{
    if (!positional || !TakeCone(innerAngle, outerAngle, outerGain, cone)) {
        return;
    }
    const ContextScope scope(services.device);
    const std::scoped_lock outputLock(outputMutex);
    if (voice) {
        voice->SetCone(cone.innerAngle, cone.outerAngle, cone.outerGain);
    }
}

void OpenALChannel::SetDirection(const Vector3& direction)
{
    Vector3 taken;
    if (!positional || !TakePosition(direction, taken)) {
        return;
    }
    const ContextScope scope(services.device);
    const std::scoped_lock outputLock(outputMutex);
    if (voice) {
        voice->SetDirection(taken);
    }
}

bool OpenALChannel::SetFrequency(unsigned long hz)
{
    if (hasEffects || !IsRateAccepted(hz)) {
        return false;
    }
    const ContextScope scope(services.device);
    const std::scoped_lock outputLock(outputMutex);
    playback.hz = hz;
    ApplySpeed();
    // The queue may not last until the next round now.
    WakeFeeder();
    return true;
}

unsigned long OpenALChannel::GetFrequency()
{
    const std::scoped_lock outputLock(outputMutex);
    return playback.hz != 0 ? playback.hz : static_cast<unsigned long>(fileRateHz);
}

void OpenALChannel::SetLowPass(float gainHF)
{
    if (std::isnan(gainHF)) {
        return;
    }
    const std::scoped_lock outputLock(outputMutex);
    playback.lowPass = std::clamp(gainHF, 0.0F, 1.0F);
}

void OpenALChannel::SetPitch(float factor)
{
    if (std::isnan(factor)) {
        return;
    }
    const ContextScope scope(services.device);
    const std::scoped_lock outputLock(outputMutex);
    playback.pitch = std::clamp(factor, 0.5F, 2.0F);
    ApplySpeed();
}

bool OpenALChannel::SetFXEnvReverbSourceProperties(const FXEnvReverbSourceProperties* wanted)
{
    const ContextScope scope(services.device);
    const std::scoped_lock outputLock(outputMutex);
    return voice && acoustics.SetProperties(wanted);
}

bool OpenALChannel::GetFXEnvReverbSourceProperties(FXEnvReverbSourceProperties* record)
{
    const std::scoped_lock outputLock(outputMutex);
    return voice && acoustics.GetProperties(record);
}

bool OpenALChannel::GetFXEnvReverbListenerProperties(FXEnvReverb* record)
{
    const std::scoped_lock outputLock(outputMutex);
    return voice && acoustics.GetOwnRoom(record);
}

template<class Record>
bool OpenALChannel::GetParameters(Record* record)
{
    if (!hasEffects) {
        return false;
    }
    const SyncLock lock(chanLock);
    return feed.GetReader().GetEffects().GetParameters(record);
}

void OpenALChannel::OnListenerMoved()
{
    if (!positional) {
        return;
    }
    const std::scoped_lock outputLock(outputMutex);
    if (voice) {
        UpdateCutOut();
    }
}

void OpenALChannel::OnRolloffChanged()
{
    const std::scoped_lock outputLock(outputMutex);
    if (voice && positional) {
        voice->SetRolloffFactor(services.listener.rolloffFactor);
    }
}

bool OpenALChannel::TakeChange(SndFileChange& change)
{
    if (state != State::Playing) {
        return false;
    }
    const ContextScope scope(services.device);
    const std::scoped_lock outputLock(outputMutex);
    if (steps.IsEmpty() || GetStreamHeard() < static_cast<double>(steps.GetOldest().position)) {
        return false;
    }
    const FileStep& step = steps.GetOldest();
    change = {this, step.newFile, step.oldFile};
    steps.DropOldest();
    return true;
}

bool OpenALChannel::TakeEnd()
{
    if (state != State::Playing) {
        return false;
    }
    bool hasFaded = false;
    {
        const ContextScope scope(services.device);
        const std::scoped_lock outputLock(outputMutex);
        hasFaded = fadeOut.IsOver(services.device.GetTime());
        const bool hasRunOut = isExhausted && steps.IsEmpty() && !voice->IsPlaying();
        if (!hasFaded && !hasRunOut) {
            return false;
        }
    }
    // A file may have been appended since the queue was last checked. An exhausted queue is not being read,
    // so the lock is free.
    const SyncLock lock(chanLock);
    if (!hasFaded && !feed.GetReader().GetReader().IsAtEnd(*this)) {
        return false;
    }
    GiveBackVoice(false, 0);
    state = State::Ending;
    return true;
}

void OpenALChannel::OnDeviceChanged()
{
    const std::scoped_lock outputLock(outputMutex);
    if (voice) {
        acoustics.Rebind(voice->GetSource());
    }
}

void OpenALChannel::ApplyGain(std::int64_t time)
{
    if (voice) {
        voice->SetGain(isCutOut ? 0.0F : gain * fadeOut.GetLevel(time));
    }
}

void OpenALChannel::ApplySpeed()
{
    if (voice) {
        voice->SetPitch(convertedHz != 0 ? 1.0F : static_cast<float>(GetSpeedHz() / fileRateHz));
    }
}

void OpenALChannel::UpdateCutOut()
{
    isCutOut = IsCutOut(range, position, services.listener.position);
    ApplyGain(services.device.GetTime());
}

} // namespace Quon
