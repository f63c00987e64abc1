#include "harmonet/engine/Messages.h"
#include "harmonet/engine/Task.h"
#include "harmonet/files/SndFile.h"
#include "harmonet/files/SndNodeCache.h"
#include "harmonet/instances/Microphone.h"
#include "harmonet/kernel/SndKernel.h"
#include "harmonet/output/SndChannel.h"
#include "harmonet/output/SndDriver.h"

#include <cmath>
#include <memory>

namespace Quon
{

namespace
{

void ReportNotStarted(const SndBase& sound, const char* reason)
{
    if (Messages::AreWanted()) {
        Report(MessageLevel::Note, "sound ", sound.GetSoundID(), " ('", sound.GetFileName(),
            "') is not started: ", reason);
    }
}

constexpr const char* tooFar =
    "no microphone is active or the sound is beyond its maximum distance, and it cannot continue as a "
    "virtual voice";
constexpr const char* noChannel =
    "it needs a channel now, but all are in use, the driver has none for it, or no microphone is active";

} // namespace

SndFile* SndKernel::OpenFileOf(SndBase& sound)
{
    SndFile* file = sound.IsMusic()
        ? OpenStream(sound.GetSubstName(), sound.GetFileName())
        : dataCache->OpenSound(sound.GetSubstName(), sound.GetFileName(), sound.GetPriority());
    if (file) {
        sound.ApplyLoopRegion(*file);
        sound.SetSoundLength(file->GetSoundLength());
    }
    return file;
}

SndFile* SndKernel::OpenStream(const PString& substName, const PString& fileName)
{
    SndFile* held = dataCache->OpenHeld(substName, fileName);
    return held ? held : SndFile::OpenFile(substName, fileName);
}

bool SndKernel::PlaySound(SndBase* sound)
{
    if (!driver || refusesSounds) {
        ReportNotStarted(*sound, "the sound system or all its sounds are being stopped");
        return false;
    }
    if (!sound->sndFile && !FindLength(*sound)) {
        return false;
    }
    const bool competes = sound->HasAnyFlag(FlagCompete);
    if (competes) {
        sound->SetDelay(0);
    }
    if (sound->IsPaused()) {
        if (!IsListed(*sound)) {
            StartPaused(*sound, RowWasWaiting);
        }
        TraceChange(*sound);
        return true;
    }
    if (sound->IsImmediately() && !sound->GetInPause()) {
        if (StartImmediately(*sound)) {
            TraceChange(*sound);
            return true;
        }
        // Otherwise it may have been deleted.
        if (!competes) {
            return false;
        }
    }
    sound->SetStateTime(waitingStateTimeMs);
    // A chosen sound, which is about to get its channel, must not return to the waiting list.
    if (!IsListed(*sound)) {
        MarkStarted(*sound, false);
        Insert(*sound, ListID::Waiting);
        TraceChange(*sound);
    }
    return true;
}

// From a like sound, or else from the file, which is then open.
bool SndKernel::FindLength(SndBase& sound)
{
    UseName(sound);
    if (const auto length = FindLikeLength(sound.Row().Name(), &sound)) {
        sound.SetSoundLength(*length);
        return true;
    }
    SndFile* file = OpenFileOf(sound);
    if (file) {
        sound.TakeFile(file);
    }
    return file != nullptr;
}

// A running update ignores the sound until the next one. With `isNow` it gets a channel at once; the
// machine's clock is then not read, because that would take longer than everything else.
void SndKernel::MarkStarted(SndBase& sound, bool isNow)
{
    sound.startSerial = ++startCounter;
    sound.startedAt = clockMs;
    const int delay = sound.IsImmediately() ? 0 : sound.GetDelay();
    sound.startGameTime = GetGameTime(delay);
    sound.startMachineTime = isNow ? StartClock::now : StartClock::GetMachineTime(delay);
    sound.Row().SetMark(RowNewcomer, takesNewcomers);
    if (takesNewcomers) {
        newcomers.push_back(sound.rowNumber);
    }
}

std::int64_t SndKernel::GetGameTime(int delayMs) const
{
    // During an update the time has already been passed on.
    if (updating) {
        return startClock.GetGameTime(0, delayMs);
    }
    constexpr double microsecondsPerSecond = 1e6;
    const double held = task ? task->GetGatheredSeconds() : 0.0;
    const std::int64_t gathered = static_cast<std::int64_t>(elapsed) * StartClock::microsecondsPerMs +
        std::llround(held * microsecondsPerSecond);
    return startClock.GetGameTime(gathered, delayMs);
}

void SndKernel::ForgetNewcomers()
{
    for (const std::uint32_t row : newcomers) {
        SoundRows::At(row).SetMark(RowNewcomer, false);
    }
    newcomers.clear();
}

void SndKernel::ChangeReason(SoundRow row, SoundReason reason)
{
    row.Reason() = reason;
    row.GetSound()->reasonSince = clockMs;
}

bool SndKernel::StartImmediately(SndBase& sound)
{
    // It may already be waiting, and a sound is on one list at most.
    Unlist(sound);
    MarkStarted(sound, true);
    const bool competes = sound.HasAnyFlag(FlagCompete);
    const bool hasReach = (sound.GetChannelFlags() & ChanCutOut) != 0;
    if (hasReach && activeMicrophone) {
        sound.CalcDistSqr(activeMicrophone->GetGlobalPosition());
    }
    const SoundReason reason = WhyInaudible(sound.Row());
    if (reason == SoundReason::None || (reason == SoundReason::BeyondReach && !hasReach)) {
        return competes ? StartChannel(&sound) : StartNow(sound);
    }
    SetReason(sound.Row(), reason);
    if (competes) {
        return false;
    }
    if (!sound.IsEmulation() || !IsLongEnough(sound)) {
        ReportNotStarted(sound, tooFar);
    }
    return EmulateOrDelete(sound);
}

bool SndKernel::StartNow(SndBase& sound)
{
    const bool isStarted = StartChannel(&sound);
    if (!isStarted) {
        ReportNotStarted(sound, noChannel);
    }
    return isStarted;
}

bool SndKernel::IsLongEnough(const SndBase& sound) const
{
    return sound.GetRemainLength() >= static_cast<unsigned long>(options.minEmulationLength);
}

bool SndKernel::EmulateOrDelete(SndBase& sound)
{
    if (sound.IsEmulation() && IsLongEnough(sound) && EmulateSound(&sound)) {
        return true;
    }
    DeleteInaudible(sound);
    return false;
}

void SndKernel::DeleteInaudible(SndBase& sound)
{
    const bool isRefused = sound.IsEmulation() && IsLongEnough(sound);
    SetReason(sound.Row(),
        isRefused                 ? SoundReason::Refused
            : sound.IsEmulation() ? SoundReason::TooShort
                                  : SoundReason::NotEmulated);
    delete &sound;
}

// A sound that resumes from a pause continues its fade-in.
void SndKernel::BeginFadeIn(const SndBase& sound, SndChannel& channel)
{
    const auto passed = static_cast<int>(sound.GetExtras().fadeInPassed);
    if (!sound.IsFadeIn() || (passed > 0 && passed >= sound.GetFadeDuration())) {
        return;
    }
    channel.FadeIn(sound.GetFadeDuration());
    if (passed > 0) {
        channel.SkipFade(passed);
    }
}

bool SndKernel::StartChannel(SndBase* sound)
{
    const bool isFull = !sound->GetFadeOutChannel() && GetAudibleCount() >= maxAudible && !sound->IsMusic();
    if (!driver || isFull || (sound->Is3D() && !activeMicrophone)) {
        return false;
    }
    std::unique_ptr<SndFile> opened(sound->sndFile ? nullptr : OpenFileOf(*sound));
    SndFile* file = opened ? opened.get() : sound->GetSndFile();
    if (!file) {
        return false;
    }
    SndChannel* channel = driver->CreateChannel(sound->GetChannelFlags(), file, sound->GetThisFXList());
    if (!channel) {
        return false;
    }
    BeginFadeIn(*sound, *channel);
    sound->SetSndChannel(channel);
    try {
        if (sound->Row().List() != ListID::Playing) {
            // Music that an observer has restarted can be among the chosen sounds.
            Unlist(*sound);
            Insert(*sound, ListID::Playing);
        }
    }
    catch (...) {
        // If memory for its entry runs out, it has no channel.
        channel->Stop();
        sound->SetSndChannel(nullptr);
        throw;
    }
    PlayOnChannel(*sound, opened ? opened.release() : file);
    return true;
}

void SndKernel::SetUpChannel(SndBase& sound, SndChannel& channel)
{
    if (const float gainHF = sound.GetOutputLowPass(); gainHF < 1.0F) {
        channel.SetLowPass(gainHF);
    }
    sound.UpdatePitch(channel, true);
}

void SndKernel::PlayOnChannel(SndBase& sound, SndFile* file)
{
    SetReason(sound.Row(), SoundReason::Won);
    SndChannel* channel = sound.GetSndChannel();
    // A new channel already has a gain of 1.0.
    const float outputGain = sound.GetOutputGain();
    if (outputGain >= 0.0F && outputGain < 1.0F) {
        channel->SetGain(outputGain);
    }
    const bool isBeginning = !sound.IsPlaying();
    sound.Play(file);
    if (sound.Row().HasMark(RowReturns)) {
        sound.SetStateTime(sound.GetExtras().pausedStateMs);
        sound.Row().SetMark(RowReturns, false);
    }
    if (const unsigned long hz = sound.GetNewFrequency()) {
        channel->SetFrequency(hz);
    }
    if (isBeginning) {
        channel->SetStartTime(startClock.GetSinceUpdate(sound.startGameTime, updating),
            StartClock::GetAge(sound.startMachineTime));
    }
    SetUpChannel(sound, *channel);
    channel->Play();
}

bool SndKernel::StartMusic(SndBase& instance)
{
    const bool waits = instance.IsPaused() || instance.Row().List() == ListID::Paused;
    MarkStarted(instance, !waits);
    const bool isStarted = waits ? StartPausedMusic(instance) : StartNow(instance);
    if (isStarted) {
        TraceChange(instance);
    }
    return isStarted;
}

void SndKernel::GiveUpFile(SndBase& instance)
{
    if (!instance.GetFadeOutChannel() && !instance.GetExtras().fadingOut.file) {
        Unlist(instance);
    }
    instance.SetExtra(&SndBase::Extras::fadeInPassed, 0U);
    SndFile* file = instance.sndFile;
    instance.TakeFile(nullptr);
    instance.CloseAndDelete(file);
}

bool SndKernel::MoveTo(SndBase& sound, int sample)
{
    const bool isHeard = sound.GetSndChannel();
    sound.StopChannel();
    sound.GetSndFile()->SeekTo(sample);
    if (!isHeard || StartChannel(&sound)) {
        return true;
    }
    Unlist(sound);
    return EmulateOrDelete(sound);
}

bool SndKernel::EmulateSound(SndBase* sound)
{
    SndFile* file = sound->GetSndFile();
    if (!file) {
        file = OpenFileOf(*sound);
        if (!file) {
            return false;
        }
    }
    sound->Play(file);
    const bool goesOn = sound->Emulate();
    if (goesOn) {
        Insert(*sound, ListID::Emulated);
    }
    return goesOn;
}

unsigned long SndKernel::GetLength(const PString& substName, const PString& fileName)
{
    if (const auto length = FindLikeLength(names.Find(fileName, substName), nullptr)) {
        return *length;
    }
    const std::unique_ptr<SndFile> file(OpenStream(substName, fileName));
    return file ? file->GetSoundLength() : 0;
}

void SndKernel::DeleteListed(int kind)
{
    for (const ListID id : regularLists) {
        SoundWalk walk = Walk(id, SoundWalk::Visit);
        while (const SoundRow row = walk.Next()) {
            SndBase* sound = row.GetSound();
            if (!IsOfKind(*sound, kind) || sound->IsInNotification()) {
                continue;
            }
            Unlist(*sound);
            delete sound;
        }
    }
}

void SndKernel::StopAll()
{
    const bool refusedBefore = refusesSounds;
    {
        const SndBase::MusicHold hold;
        DeleteListed(kindAll);
        // Sounds that observers have started in response end too. From here on they cannot start any more, so
        // this loop terminates and no sound is left.
        refusesSounds = true;
        DeleteAllSounds(kindAll);
    }
    refusesSounds = refusedBefore;
}

void SndKernel::StopAll2D()
{
    DeleteListed(kind2D);
    DeleteAllSounds(kind2D);
}

void SndKernel::StopAll3D()
{
    DeleteListed(kind3D);
    DeleteAllSounds(kind3D);
}

int SndKernel::OnDriverEvent(int event, void* data)
{
    if (event == SndChannelEnded) {
        OnChannelEnded(static_cast<SndChannel*>(data));
    }
    else if (event == SndFileChanged) {
        OnFileChanged(*static_cast<SndFileChange*>(data));
    }
    return 0;
}

SndBase* SndKernel::FindByChannel(const SndChannel* channel)
{
    SndBase* found = nullptr;
    GetList(ListID::Playing).ForEach([&](SndBase& sound) {
        if (channel && (sound.GetSndChannel() == channel || sound.GetFadeOutChannel() == channel)) {
            found = &sound;
        }
    });
    return found;
}

void SndKernel::OnChannelEnded(SndChannel* channel)
{
    SndBase* sound = FindByChannel(channel);
    if (!sound) {
        return;
    }
    if (sound->GetSndChannel() == channel) {
        channel->SetSndFile(nullptr);
        sound->SetSndChannel(nullptr);
    }
    else {
        sound->SetFadeOutChannel(nullptr);
        SndFile* file = channel->GetSndFile();
        channel->SetSndFile(nullptr);
        SndBase::NotificationScope notification(*sound);
        sound->CloseAndDelete(file);
    }
    if (!sound->IsAudible()) {
        delete sound;
    }
}

void SndKernel::OnFileChanged(const SndFileChange& change)
{
    SndBase* sound = FindByChannel(change.channel);
    if (!sound) {
        return;
    }
    SndBase::NotificationScope notification(*sound);
    if (sound->GetSndChannel() == change.channel) {
        sound->MoveOnTo(change.newFile);
    }
    else if (change.oldFile) {
        change.oldFile->ClearQueue();
        sound->CloseAndDelete(change.oldFile);
    }
}

} // namespace Quon
