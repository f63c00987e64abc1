#include "drivers/openal/OpenALChannel.h"

#include "drivers/openal/Feeder.h"
#include "drivers/openal/OutputDevice.h"
#include "drivers/openal/SteadyTime.h"
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
constexpr std::int64_t microsecondsPerMillisecond = 1000;
constexpr std::int64_t nanosecondsPerMicrosecond = 1000;
/// A live sound is queued by another thread, which takes its time.
constexpr std::int64_t feederMicroseconds = 10000;
/// A fade ends with the block that is mixed then.
constexpr int lastBlockMs = 10;
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
    wantedHz = 0;
    start = {};
    isDry = false;
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
            start.time = GetSteadyNanoseconds();
        }
        {
            // The sound may have gone to where it begins after the channel was made.
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

// A source that runs out in the middle of its fade would click.
void OpenALChannel::QueueFadeOut(std::int64_t microseconds)
{
    if (!voice->IsPlaying() || !voice->HasRoom()) {
        return;
    }
    const std::int64_t missing = ToFrames(microseconds, GetSpeedHz()) - voice->GetFramesAhead();
    if (missing > 0) {
        AppendToVoice(feed.FillFromHeld(static_cast<int>(missing), wantedHz));
    }
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
    // What is read can be a pass or more of a loop ahead of what is heard.
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
        const bool hasRunOut = isDry && steps.IsEmpty() && !voice->IsPlaying();
        if (!hasFaded && !hasRunOut) {
            return false;
        }
    }
    // A file may have been appended since the queue was last looked at. Of a queue that has run out nothing
    // is being read, so the lock is free.
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

void OpenALChannel::Pump(const PumpTargets& ahead, std::int64_t time, bool mayWait)
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

void OpenALChannel::PumpRound(const PumpTargets& ahead, std::int64_t time)
{
    StartRound(time);
    if (!feed.GetReader().HasBegun()) {
        BeginSound();
    }
    // A disk that is slower than the sound never gets the target read. Stop() must not wait for more than the
    // read that is going on, nor other channels for more than a few.
    for (int blocks = 0; isPumped && blocks < Voice::bufferCount; ++blocks) {
        const Wanted wanted = CountWanted(ahead);
        if (wanted.sampleFrames == 0) {
            break;
        }
        const int given = feed.Fill(*this, wanted.sampleFrames, wanted.hz);
        const bool ranDry = given < wanted.sampleFrames;
        QueueBlock(given, ranDry);
        // To ask OpenAL again would cost more than it could tell.
        if (ranDry || wanted.missing <= given) {
            break;
        }
    }
}

void OpenALChannel::ReadAhead(std::int64_t microseconds)
{
    if (!isPumped) {
        return;
    }
    const SyncLock lock(chanLock);
    if (!isPumped || !feed.GetReader().HasBegun()) {
        return;
    }
    std::unique_lock outputLock(outputMutex);
    const std::int64_t frames = ToFrames(microseconds, GetPlayedHz()) + RateConverter::lookahead;
    outputLock.unlock();
    feed.ReadAhead(*this, frames);
    outputLock.lock();
    TakeSteps();
}

void OpenALChannel::BeginSound()
{
    feed.Begin(*this);
    const std::scoped_lock outputLock(outputMutex);
    // A stream tells its rate for certain only once it has been read from.
    fileRateHz = feed.GetReader().GetRateHz();
    ApplySpeed();
    PlaceStart();
}

// A source begins with the block that is mixed next. Silence puts its sound to where it belongs; what comes
// back can also have missed its time.
void OpenALChannel::PlaceStart()
{
    const bool isReturn = !start.isKept && feed.GetReader().BeganInside();
    if (!services.feeder) {
        const double frames =
            services.device.GetRenderedFraction() * GetSpeedHz() / services.device.GetRateHz() +
            static_cast<double>(start.delay) * GetSpeedHz() / microsecondsPerSecond;
        feed.Delay(start.isKept ? static_cast<int>(frames) : 0);
    }
    else if (start.isKept || isReturn) {
        const std::int64_t wait = services.device.HasSession() ? services.device.GetMixLag(start.time)
                                                               : start.time - GetSteadyNanoseconds();
        const double seconds = static_cast<double>(wait) / static_cast<double>(nanosecondsPerSecond);
        feed.Delay(static_cast<int>(std::max(seconds, 0.0) * GetSpeedHz()));
        if (isReturn && seconds < 0.0) {
            feed.Skip(static_cast<int>(std::lround(-seconds * GetPlayedHz())));
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
    heardMap.DropBefore(voice->GetFramesHeard());
}

OpenALChannel::Wanted OpenALChannel::CountWanted(const PumpTargets& ahead)
{
    const std::scoped_lock outputLock(outputMutex);
    const double speedHz = GetSpeedHz();
    const std::int64_t isAhead = voice->GetFramesAhead();
    const std::int64_t target = feed.GetReader().GetTailFrames() > 0 ? ahead.tailTarget : ahead.target;
    const std::int64_t missing = ToFrames(target, speedHz) + resamplerFrames - isAhead;
    if (missing <= 0 || !voice->HasRoom() || fadeOut.IsOver(services.device.GetTime())) {
        return {0, wantedHz, 0};
    }
    const int minBlock = std::max(ToBlockFrames(ahead.minBlock, speedHz), 1);
    const int maxBlock = std::max(ToBlockFrames(ahead.maxBlock, speedHz), minBlock);
    return {static_cast<int>(std::clamp<std::int64_t>(missing, minBlock, maxBlock)), wantedHz, missing};
}

void OpenALChannel::QueueBlock(int sampleFrames, bool ranDry)
{
    const std::scoped_lock outputLock(outputMutex);
    AppendToVoice(sampleFrames);
    isDry = ranDry;
    TakeSteps();
}

void OpenALChannel::AppendToVoice(int sampleFrames)
{
    const std::int64_t begin = voice->GetFramesQueued();
    if (sampleFrames > 0) {
        voice->Queue(feed.GetBlock().data(), sampleFrames, feed.GetOutChannels(), feed.GetBlockHz());
    }
    heardMap.Add(begin + feed.GetSilence(), feed.GetBlockBegin());
    heardMap.SetEnd(begin + sampleFrames, feed.GetStreamPosition());
}

void OpenALChannel::TakeSteps()
{
    for (FileSteps& fresh = feed.GetSteps(); !fresh.IsEmpty(); fresh.DropOldest()) {
        steps.Add(fresh.GetOldest());
    }
    UpdateFileEnd();
}

void OpenALChannel::UpdateFileEnd()
{
    fileEnd = feed.GetReader().GetFileEnd() + feed.GetReader().GetReader().GetFramesLeft(*this);
    wraps = feed.GetReader().GetWraps();
}

// How many sample frames of what is queued go by in a second.
double OpenALChannel::GetSpeedHz() const
{
    return convertedHz != 0 ? convertedHz : GetPlayedHz();
}

double OpenALChannel::GetPlayedHz() const
{
    return wantedHz != 0 ? static_cast<double>(wantedHz) : fileRateHz;
}

double OpenALChannel::GetStreamHeard() const
{
    return heardMap.At(voice->GetFramesHeard());
}

// A device mixes in steps. Between two of them time goes on, and the sound with it.
double OpenALChannel::GetStreamDue() const
{
    const OutputDevice& device = services.device;
    if (!services.feeder || !device.HasSession() || !voice->IsPlaying()) {
        return GetStreamHeard();
    }
    std::int64_t heard = 0;
    std::int64_t lag = 0;
    std::int64_t mixed = 0;
    // Until the device has mixed nothing in between.
    do {
        mixed = device.GetMixClock();
        heard = voice->GetFramesHeard();
        lag = device.GetMixLag(GetSteadyNanoseconds());
    } while (device.GetMixClock() != mixed && device.HasMixClock());
    return heardMap.At(heard + ToFrames(lag / nanosecondsPerMicrosecond, GetSpeedHz()));
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
