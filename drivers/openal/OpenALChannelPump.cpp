// How a channel is fed: what the thread that pumps does, and how far the sound has got.

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
        const int given = feed.Fill(*this, wanted.sampleFrames, wanted.playback);
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
        return {0, playback, 0};
    }
    const int minBlock = std::max(ToBlockFrames(ahead.minBlock, speedHz), 1);
    const int maxBlock = std::max(ToBlockFrames(ahead.maxBlock, speedHz), minBlock);
    return {static_cast<int>(std::clamp<std::int64_t>(missing, minBlock, maxBlock)), playback, missing};
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

// A source that runs out in the middle of its fade would click.
void OpenALChannel::QueueFadeOut(std::int64_t microseconds)
{
    if (!voice->IsPlaying() || !voice->HasRoom()) {
        return;
    }
    const std::int64_t missing = ToFrames(microseconds, GetSpeedHz()) - voice->GetFramesAhead();
    if (missing > 0) {
        AppendToVoice(feed.FillFromHeld(static_cast<int>(missing), playback));
    }
}

// How many sample frames of what is queued go by in a second.
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

} // namespace Quon
