#include "drivers/openal/OpenALChannel.h"

#include "drivers/openal/Feeder.h"
#include "drivers/openal/OutputDevice.h"
#include "drivers/openal/VoicePool.h"
#include "harmonet/files/SndFile.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace Quon
{

namespace
{

constexpr double microsecondsPerSecond = 1e6;
// The resampler looks some sample frames ahead, and a source that finds none there falls short of its end.
constexpr int resamplerFrames = 64;

std::int64_t ToFrames(std::int64_t microseconds, double rateHz)
{
    return static_cast<std::int64_t>(static_cast<double>(microseconds) * rateHz / microsecondsPerSecond);
}

int ToBlockFrames(std::int64_t microseconds, double rateHz)
{
    return static_cast<int>(std::min<std::int64_t>(ToFrames(microseconds, rateHz), PcmFeed::maxBlockFrames));
}

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
    range = {0.0f, 0.0f, (flags & ChanCutOut) != 0};
    cone = {};
    newVoice->Begin(positional);
    if (positional) {
        newVoice->SetRolloffFactor(services.listener.rolloffFactor);
    }
    const bool looping = flags & ChanLooping;
    SetSndFile(file);
    feed.Start(positional ? 1 : 2, looping, *file, effects);
    hasEffects = !feed.GetEffects().IsEmpty();
    const std::scoped_lock outputLock(outputMutex);
    voice = newVoice;
    acoustics.Begin(voice->GetSource(), positional, flags & ChanDisableMicFX, effects);
    steps.Clear();
    passLength = looping ? std::max(file->GetSoundSamples(), 0) : 0;
    fileRateHz = file->GetSampleFrequency();
    wantedHz = 0;
    isDry = false;
    gain = 1.0f;
    isCutOut = false;
    fadeOut.Cancel();
    UpdateFileEnd();
    state = State::Ready;
    return true;
}

void OpenALChannel::Play()
{
    if (state == State::Ready) {
        state = State::Playing;
        isPumped = true;
        WakeFeeder();
    }
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
    GiveBackVoice(true);
    state = State::Free;
}

void OpenALChannel::GiveBackVoice(bool isCutOff)
{
    isPumped = false;
    const SyncLock lock(chanLock);
    const ContextScope scope(services.device);
    const std::scoped_lock outputLock(outputMutex);
    SetSndFile(steps.GetOldestFile(GetSndFile()));
    steps.Clear();
    feed.Finish();
    acoustics.End(isCutOff);
    services.voices.Retire(std::exchange(voice, nullptr));
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

unsigned long OpenALChannel::GetRemainLength()
{
    const ContextScope scope(services.device);
    const std::scoped_lock outputLock(outputMutex);
    if (!voice) {
        return 0;
    }
    const std::int64_t end = steps.IsEmpty() ? fileEnd : steps.GetOldest().oldEnd;
    std::int64_t left = end - voice->GetFramesHeard();
    // What is read can be a pass or more of a loop ahead of what is heard.
    if (passLength > 0 && left > 0) {
        left = (left - 1) % passLength + 1;
    }
    return ToMilliseconds(left, fileRateHz);
}

void OpenALChannel::SetGain(float newGain)
{
    if (std::isnan(newGain)) {
        return;
    }
    const ContextScope scope(services.device);
    const std::scoped_lock outputLock(outputMutex);
    gain = std::clamp(newGain, 0.0f, 1.0f);
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
    wantedHz = hz;
    ApplySpeed();
    // What is queued may not last until the next round now.
    WakeFeeder();
    return true;
}

unsigned long OpenALChannel::GetFrequency()
{
    const std::scoped_lock outputLock(outputMutex);
    return wantedHz != 0 ? wantedHz : static_cast<unsigned long>(fileRateHz);
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
    return feed.GetEffects().GetParameters(record);
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
    if (steps.IsEmpty() || voice->GetFramesHeard() < steps.GetOldest().position) {
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
        const bool hasRunOut = isDry && steps.IsEmpty() && !voice->IsPlaying();
        if (!hasFaded && !hasRunOut) {
            return false;
        }
    }
    // A file may have been appended since the queue was last looked at. Of a queue that has run out nothing
    // is being read, so the lock is free.
    const SyncLock lock(chanLock);
    if (!hasFaded && !feed.GetReader().IsAtEnd(*this)) {
        return false;
    }
    GiveBackVoice(false);
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

void OpenALChannel::Pump(const ReadAhead& ahead, std::int64_t time, bool mayWait)
{
    constexpr int noLimit = -1;
    if (!isPumped || !chanLock.Lock(mayWait ? noLimit : 0)) {
        return;
    }
    if (isPumped) {
        PumpRound(ahead, time);
    }
    chanLock.Unlock();
}

bool OpenALChannel::IsChanging()
{
    const std::scoped_lock outputLock(outputMutex);
    return voice && (fadeOut.IsRunning() || acoustics.IsBehind());
}

void OpenALChannel::PumpRound(const ReadAhead& ahead, std::int64_t time)
{
    StartRound(time);
    // A disk that is slower than the sound never gets the target read. Stop() must not wait for more than the
    // read that is going on, nor other channels for more than a few.
    for (int blocks = 0; isPumped && blocks < Voice::bufferCount; ++blocks) {
        const Wanted wanted = CountWanted(ahead);
        if (wanted.sampleFrames == 0) {
            return;
        }
        const int given = feed.Fill(*this, wanted.sampleFrames, wanted.speedHz);
        const bool ranDry = given < wanted.sampleFrames;
        QueueBlock(given, ranDry);
        // To ask OpenAL again would cost more than it could tell.
        if (ranDry || wanted.missing <= given) {
            return;
        }
    }
}

void OpenALChannel::StartRound(std::int64_t time)
{
    const std::scoped_lock outputLock(outputMutex);
    ApplyGain(time);
    if (acoustics.IsBehind() && !services.voices.IsDeferred()) {
        acoustics.Follow(voice->IsPlaying());
    }
    // The sound broke off because it was not read in time, or comes back with another device. Where it goes
    // on it would click.
    if (voice->TakeReturn() || (!isDry && voice->GetFramesQueued() > 0 && !voice->IsPlaying())) {
        feed.SoftenNext();
    }
    voice->Reclaim();
}

OpenALChannel::Wanted OpenALChannel::CountWanted(const ReadAhead& ahead)
{
    const std::scoped_lock outputLock(outputMutex);
    const double speedHz = GetSpeedHz();
    const std::int64_t isAhead = voice->GetFramesAhead();
    const std::int64_t target = feed.GetTailFrames() > 0 ? ahead.tailTarget : ahead.target;
    const std::int64_t missing = ToFrames(target, speedHz) + resamplerFrames - isAhead;
    if (missing <= 0 || !voice->HasRoom() || fadeOut.IsOver(services.device.GetTime())) {
        return {0, speedHz, 0};
    }
    // The rate is certain only when the first block has been read.
    const bool isCertain = voice->GetFramesQueued() > 0;
    const int minBlock = std::max(ToBlockFrames(ahead.minBlock, speedHz), 1);
    const int maxBlock = std::max(ToBlockFrames(ahead.maxBlock, speedHz), minBlock);
    return {static_cast<int>(std::clamp<std::int64_t>(missing, minBlock, maxBlock)), speedHz,
        isCertain ? missing : std::numeric_limits<std::int64_t>::max()};
}

void OpenALChannel::QueueBlock(int sampleFrames, bool ranDry)
{
    const std::scoped_lock outputLock(outputMutex);
    const std::int64_t begin = voice->GetFramesQueued();
    if (begin == 0 && sampleFrames > 0) {
        fileRateHz = feed.GetRateHz();
        ApplySpeed();
    }
    if (sampleFrames > 0) {
        voice->Queue(feed.GetBlock().data(), sampleFrames, feed.GetOutChannels(), fileRateHz);
    }
    for (FileSteps& fresh = feed.GetSteps(); !fresh.IsEmpty(); fresh.DropOldest()) {
        FileStep step = fresh.GetOldest();
        step.position += begin;
        step.oldEnd += begin;
        steps.Add(step);
    }
    isDry = ranDry;
    UpdateFileEnd();
}

void OpenALChannel::UpdateFileEnd()
{
    fileEnd = voice->GetFramesQueued() - feed.GetTailFrames() + feed.GetReader().GetFramesLeft(*this);
}

double OpenALChannel::GetSpeedHz() const
{
    return wantedHz != 0 ? static_cast<double>(wantedHz) : fileRateHz;
}

void OpenALChannel::ApplyGain(std::int64_t time)
{
    if (voice) {
        voice->SetGain(isCutOut ? 0.0f : gain * fadeOut.GetLevel(time));
    }
}

void OpenALChannel::ApplySpeed()
{
    if (voice) {
        voice->SetPitch(static_cast<float>(GetSpeedHz() / fileRateHz));
    }
}

void OpenALChannel::UpdateCutOut()
{
    isCutOut = IsCutOut(range, position, services.listener.position);
    ApplyGain(services.device.GetTime());
}

} // namespace Quon
