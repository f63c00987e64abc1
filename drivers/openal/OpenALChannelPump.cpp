// Feeding a channel: the work of the pumping thread, and the playback position.

#include "drivers/openal/OpenALChannel.h"
#include "drivers/openal/OutputDevice.h"
#include "drivers/openal/SteadyTime.h"
#include "drivers/openal/Voice.h"
#include "drivers/openal/VoicePool.h"

#include <algorithm>
#include <cmath>

namespace Quon
{

namespace
{

constexpr double microsecondsPerSecond = 1e6;
constexpr std::int64_t nanosecondsPerMicrosecond = 1000;
// The resampler looks some sample frames ahead; a source without them ends too early.
constexpr int resamplerFrames = 64;

std::int64_t CountSampleFrames(std::int64_t microseconds, double rateHz)
{
    return static_cast<std::int64_t>(static_cast<double>(microseconds) * rateHz / microsecondsPerSecond);
}

int ToBlockFrames(std::int64_t microseconds, double rateHz)
{
    return static_cast<int>(
        std::min<std::int64_t>(CountSampleFrames(microseconds, rateHz), PcmFeed::maxBlockFrames));
}

} // namespace

void OpenALChannel::Pump(const PumpTargets& ahead, std::int64_t time)
{
    constexpr int noWait = 0;
    if (isPumped && chanLock.Lock(noWait)) {
        if (BeginRound(ahead, time)) {
            QueueBlocks(ahead);
        }
        chanLock.Unlock();
    }
}

bool OpenALChannel::IsChanging()
{
    const std::scoped_lock outputLock(outputMutex);
    return voice && (fadeOut.IsRunning() || acoustics.IsOutdated());
}

bool OpenALChannel::BeginRound(const PumpTargets& ahead, std::int64_t time)
{
    if (!isPumped) {
        return false;
    }
    const SyncLock lock(chanLock);
    if (!isPumped) {
        return false;
    }
    StartRound(time);
    if (!feed.GetReader().HasBegun()) {
        BeginSound();
    }
    wantedNext = CountWanted(ahead);
    filled.reset();
    if (feed.IsResampling(wantedNext.playback)) {
        return wantedNext.sampleFrames > 0;
    }
    QueueBlocks(ahead);
    return false;
}

void OpenALChannel::Resample()
{
    const SyncLock lock(chanLock);
    if (isPumped && wantedNext.sampleFrames > 0) {
        FillBlock();
    }
}

void OpenALChannel::EndRound(const PumpTargets& ahead)
{
    const SyncLock lock(chanLock);
    QueueBlocks(ahead);
}

void OpenALChannel::QueueBlocks(const PumpTargets& ahead)
{
    // With a disk slower than the sound the target is never reached. Stop() must wait for the current read
    // only, and other channels for a few at most.
    for (int blocks = 0; isPumped && wantedNext.sampleFrames > 0 && blocks < Voice::bufferCount; ++blocks) {
        const int given = filled ? *filled : FillBlock();
        const bool exhausted = given < wantedNext.sampleFrames;
        QueueBlock(given, exhausted);
        // Querying OpenAL again would cost more than it could gain.
        wantedNext = exhausted || wantedNext.missing <= given ? Wanted() : CountWanted(ahead);
        filled.reset();
    }
}

int OpenALChannel::FillBlock()
{
    filled = feed.Fill(*this, wantedNext.sampleFrames, wantedNext.playback);
    return *filled;
}

bool OpenALChannel::ReadAhead(std::int64_t microseconds)
{
    if (!isPumped) {
        return true;
    }
    const SyncLock lock(chanLock);
    if (!isPumped || !feed.GetReader().HasBegun()) {
        return !isPumped;
    }
    std::unique_lock outputLock(outputMutex);
    const std::int64_t sampleFrames =
        CountSampleFrames(microseconds, GetPlayedHz()) + RateConverter::lookahead;
    outputLock.unlock();
    feed.ReadAhead(*this, sampleFrames);
    outputLock.lock();
    TakeSteps();
    return true;
}

void OpenALChannel::BeginSound()
{
    feed.Begin(*this);
    const std::scoped_lock outputLock(outputMutex);
    // The rate of a stream is certain only after a read.
    fileRateHz = feed.GetReader().GetRateHz();
    ApplySpeed();
    PlaceStart();
}

// A source begins with the next block that is mixed. Silence delays its sound to the right time; a resumed
// sound can also be late.
void OpenALChannel::PlaceStart()
{
    const bool isReturn = !start.isKept && feed.GetReader().BeganInside();
    if (!services.feeder) {
        const double sampleFrames =
            services.device.GetRenderedFraction() * GetSpeedHz() / services.device.GetRateHz() +
            static_cast<double>(start.delay) * GetSpeedHz() / microsecondsPerSecond;
        feed.Delay(start.isKept ? static_cast<int>(sampleFrames) : 0);
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
    if (acoustics.IsOutdated() && !services.voices.IsDeferred()) {
        acoustics.Follow(voice->IsPlaying());
    }
    // The sound was interrupted because it was not read in time, or it resumes on another device. Without a
    // fade-in it would click.
    if (voice->TakeReturn() || (!isExhausted && voice->GetFramesQueued() > 0 && !voice->IsPlaying())) {
        feed.SoftenNext();
    }
    voice->Reclaim();
    heardMap.DropBefore(voice->GetFramesHeard());
}

OpenALChannel::Wanted OpenALChannel::CountWanted(const PumpTargets& ahead)
{
    const std::scoped_lock outputLock(outputMutex);
    const double speedHz = GetSpeedHz();
    const std::int64_t sampleFramesAhead = voice->GetFramesAhead();
    const std::int64_t target = feed.GetReader().GetTailFrames() > 0 ? ahead.tailTarget : ahead.target;
    const std::int64_t missing = CountSampleFrames(target, speedHz) + resamplerFrames - sampleFramesAhead;
    if (missing <= 0 || !voice->HasRoom() || fadeOut.IsOver(services.device.GetTime())) {
        return {0, playback, 0};
    }
    const int minBlock = std::max(ToBlockFrames(ahead.minBlock, speedHz), 1);
    const int maxBlock = std::max(ToBlockFrames(ahead.maxBlock, speedHz), minBlock);
    return {static_cast<int>(std::clamp<std::int64_t>(missing, minBlock, maxBlock)), playback, missing};
}

void OpenALChannel::QueueBlock(int sampleFrames, bool exhausted)
{
    const std::scoped_lock outputLock(outputMutex);
    AppendToVoice(sampleFrames);
    isExhausted = exhausted;
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

// A source that is starved during its fade would click.
void OpenALChannel::QueueFadeOut(std::int64_t microseconds)
{
    if (!voice->IsPlaying() || !voice->HasRoom()) {
        return;
    }
    const std::int64_t missing = CountSampleFrames(microseconds, GetSpeedHz()) - voice->GetFramesAhead();
    if (missing > 0) {
        AppendToVoice(feed.FillFromHeld(static_cast<int>(missing), playback));
    }
}

// The number of queued sample frames played per second.
double OpenALChannel::GetSpeedHz() const
{
    return convertedHz != 0 ? convertedHz : GetPlayedHz();
}

double OpenALChannel::GetPlayedHz() const
{
    return playback.GetPlayedHz(fileRateHz);
}

double OpenALChannel::GetStreamHeard() const
{
    return heardMap.At(voice->GetFramesHeard());
}

// A device mixes in steps; the playback position advances between them.
double OpenALChannel::GetStreamDue() const
{
    const OutputDevice& device = services.device;
    if (!services.feeder || !device.HasSession() || !voice->IsPlaying()) {
        return GetStreamHeard();
    }
    std::int64_t heard = 0;
    std::int64_t lag = 0;
    std::int64_t mixed = 0;
    // Repeat until the device has not mixed in between.
    do {
        mixed = device.GetMixClock();
        heard = voice->GetFramesHeard();
        lag = device.GetMixLag(services.startTimes.GetMachineTime(GetSteadyNanoseconds()));
    } while (device.GetMixClock() != mixed && device.HasMixClock());
    return heardMap.At(heard + CountSampleFrames(lag / nanosecondsPerMicrosecond, GetSpeedHz()));
}

} // namespace Quon
