// Pause: time stops for the sounds on the paused list.

#include "harmonet/files/SndFile.h"
#include "harmonet/kernel/SndKernel.h"
#include "harmonet/output/SndChannel.h"
#include "harmonet/output/SndDriver.h"

#include <algorithm>
#include <utility>

namespace Quon
{

namespace
{

// Whether this update has counted the sound as due, or would have.
bool IsDue(SoundRow row)
{
    return row.List() == ListID::Waiting && !row.HasMark(RowDelayed | RowNewcomer) &&
        !row.HasAnyFlag(FlagInPause);
}

} // namespace

void SndKernel::SetAllPaused(bool on)
{
    allPaused = on;
    NotePauses();
}

// Returns the change in the number of due waiting sounds.
int SndKernel::ApplyPauses(const UpdateStep& step)
{
    // Pauses made by handlers from here on are handled in the next update.
    if (!std::exchange(pausesChanged, false)) {
        return 0;
    }
    try {
        return MoveToPausedAndBack(step);
    }
    catch (...) {
        // Memory ran out: the next update continues.
        pausesChanged = true;
        throw;
    }
}

int SndKernel::MoveToPausedAndBack(const UpdateStep& step)
{
    int due = 0;
    for (const ListID id : {ListID::Playing, ListID::Emulated, ListID::Waiting}) {
        SoundWalk walk = Walk(id, SoundWalk::Visit);
        while (const SoundRow row = walk.Next()) {
            if (!row.GetSound()->IsPaused()) {
                continue;
            }
            due -= IsDue(row) ? 1 : 0;
            Pause(*row.GetSound());
        }
    }
    // From the tail, so that the head of a sound along a line comes before its sources.
    SoundWalk walk = Walk(ListID::Paused, SoundWalk::Visit, SoundWalk::FromTail);
    while (const SoundRow row = walk.Next()) {
        if (!row.GetSound()->IsPaused()) {
            due += Resume(*row.GetSound(), step);
        }
    }
    return due;
}

void SndKernel::Pause(SndBase& sound)
{
    const SoundRow row = sound.Row();
    SndBase::Extras& extras = sound.UseExtras();
    row.SetMark(RowWasHeard, row.List() == ListID::Playing);
    row.SetMark(RowWasWaiting, row.List() == ListID::Waiting);
    Unlist(sound);
    sound.PauseOutput();
    extras.pausedMoves = listenerMoves;
    extras.pausedSince = clockMs;
    Insert(sound, ListID::Paused);
    SetReason(row, SoundReason::Paused);
}

// Starts a sound while it is paused. `mark` determines its state after the pause.
void SndKernel::StartPaused(SndBase& sound, std::uint32_t mark)
{
    const SoundRow row = sound.Row();
    MarkStarted(sound, false);
    row.SetMark(RowWasHeard | RowWasWaiting, false);
    row.SetMark(mark, true);
    sound.SetStateTime(waitingStateTimeMs);
    sound.UseExtras().pausedSince = clockMs;
    Unlist(sound);
    Insert(sound, ListID::Paused);
    SetReason(row, SoundReason::Paused);
    // The pause may have ended before this update.
    NotePauses();
}

// Starts music while it is paused. A piece that fades out in the same instance is paused with it.
bool SndKernel::StartPausedMusic(SndBase& instance)
{
    SndFile* file = driver ? OpenFileOf(instance) : nullptr;
    if (!file) {
        return false;
    }
    if (instance.Row().List() == ListID::Playing) {
        Pause(instance);
    }
    instance.TakeFile(file);
    StartPaused(instance, RowWasHeard);
    return true;
}

// Delays the start of a sound by the length of the pause.
void SndKernel::DelayStart(SndBase& sound) const
{
    const std::int64_t length =
        std::int64_t{clockMs - sound.GetExtras().pausedSince} * StartClock::microsecondsPerMs;
    sound.startGameTime += length;
    sound.startMachineTime += length;
}

// Returns 1 if the sound is waiting and due, otherwise 0.
int SndKernel::Resume(SndBase& sound, const UpdateStep& step)
{
    const SoundRow row = sound.Row();
    const bool listenerMoved = sound.GetExtras().pausedMoves != listenerMoves;
    Unlist(sound);
    DelayStart(sound);
    if (row.HasAnyFlag(FlagPolyline)) {
        Insert(sound, ListID::Emulated);
        if (listenerMoved && !sound.SndUpdate(0.0F, step.listener, true)) {
            delete &sound;
        }
        return 0;
    }
    const bool isPlaced = row.HasAnyFlag(Flag3D) && !row.HasAnyFlag(FlagInPause);
    if (isPlaced && (listenerMoved || row.HasMark(RowMoved))) {
        sound.CalcDistSqr(step.listener);
    }
    if (row.HasMark(RowWasHeard)) {
        ResumeHeard(sound);
        return 0;
    }
    Insert(sound, row.HasMark(RowWasWaiting) ? ListID::Waiting : ListID::Emulated);
    if (!IsDue(row)) {
        return 0;
    }
    sound.CalcDistSqr(step.listener);
    return 1;
}

// Music gets its channel back at once. Any other sound returns to the playing list with its former claim and
// gets a channel in this update's decision.
void SndKernel::ResumeHeard(SndBase& sound)
{
    const SoundRow row = sound.Row();
    if (sound.GetExtras().fadingOut.file) {
        ResumeFadeOut(sound);
    }
    if (sound.GetFadeOutChannel()) {
        Insert(sound, ListID::Playing);
    }
    if (!sound.sndFile || sound.IsMusic()) {
        const bool goesOn = sound.sndFile ? StartChannel(&sound) : sound.GetFadeOutChannel() != nullptr;
        if (!goesOn) {
            delete &sound;
        }
        return;
    }
    if (const SoundReason reason = WhyInaudible(row); reason != SoundReason::None) {
        LeavePlaying(sound, reason);
        return;
    }
    row.Flags() = (row.Flags() | FlagDistLTMax) & ~FlagDistGTMax;
    // A protected sound would exceed the limit, and its channel may be in use by another.
    sound.UseExtras().pausedStateMs = row.StateTimeMs();
    row.SetMark(RowReturns, true);
    sound.SetStateTime(std::max<unsigned long>(sound.GetStateTime(), settledMs));
    Insert(sound, ListID::Playing);
    hasReturned = true;
}

void SndKernel::ResumeFadeOut(SndBase& sound)
{
    SndBase::FadeOutState& fade = sound.UseExtras().fadingOut;
    SndFile* file = std::exchange(fade.file, nullptr);
    SndChannel* channel = driver->CreateChannel(fade.flags, file, sound.GetThisFXList());
    if (!channel) {
        SndBase::NotificationScope notification(sound);
        sound.CloseAndDelete(file);
        return;
    }
    if (fade.gain < 1.0F) {
        channel->SetGain(fade.gain);
    }
    // Play() uses the sound's own channel and begins a piece that has not begun: both belong to the next
    // piece.
    SndFile* own = sound.sndFile;
    const bool hasBegun = sound.IsPlaying();
    sound.SetIsPlaying(true);
    sound.SetSndChannel(channel);
    sound.Play(file);
    sound.SetSndChannel(nullptr);
    sound.SetIsPlaying(hasBegun);
    sound.TakeFile(own);
    if (const unsigned long hz = sound.GetNewFrequency()) {
        channel->SetFrequency(hz);
    }
    SetUpChannel(sound, *channel);
    channel->Play();
    channel->FadeOut(fade.ms);
    channel->SkipFade(static_cast<int>(fade.since));
    sound.SetFadeOutChannel(channel);
    fade.since = clockMs - fade.since;
}

void SndKernel::StartReturned()
{
    if (!std::exchange(hasReturned, false)) {
        return;
    }
    SoundWalk walk = Walk(ListID::Playing);
    while (const SoundRow row = walk.Next()) {
        SndBase& sound = *row.GetSound();
        if (sound.IsAudible()) {
            continue;
        }
        Unlist(sound);
        if (!StartChannel(&sound)) {
            EmulateOrDelete(sound);
        }
    }
}

} // namespace Quon
