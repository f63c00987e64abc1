#include "harmonet/files/SndFile.h"
#include "harmonet/files/SndNodeCache.h"
#include "harmonet/instances/Microphone.h"
#include "harmonet/kernel/SndKernel.h"
#include "harmonet/output/SndChannel.h"
#include "harmonet/output/SndDriver.h"

#include <utility>

namespace Quon
{

namespace
{

// The state time of a sound that waits: the time that protects a sound which has just changed between having
// a channel and being emulated does not hold it back.
constexpr unsigned long waitingStateTimeMs = 1000;

} // namespace

SndFile* SndKernel::OpenFileOf(SndBase& sound)
{
    if (sound.IsMusic())
        return SndFile::OpenFile(sound.substName, sound.fileName);
    return dataCache->OpenSound(sound.substName, sound.fileName, sound.priority);
}

SndBase* SndKernel::FindLikeSound(
    const PString& substName, const PString& fileName, const SndBase* except) const
{
    for (const SndList* list : {&playingList, &emulatedList, &waitingList}) {
        for (SndBase* sound = list->GetHead(); sound; sound = list->GetNext(*sound)) {
            if (sound != except && sound->fileName == fileName && sound->substName == substName)
                return sound;
        }
    }
    return nullptr;
}

bool SndKernel::PlaySound(SndBase* sound)
{
    if (!driver || refusesSounds)
        return false;
    if (!sound->sndFile) {
        if (const SndBase* like = FindLikeSound(sound->substName, sound->fileName, sound)) {
            sound->soundLength = like->sndFile ? like->sndFile->GetSoundLength() : like->soundLength;
        }
        else {
            sound->sndFile = OpenFileOf(*sound);
            if (!sound->sndFile)
                return false;
            sound->soundLength = sound->sndFile->GetSoundLength();
        }
    }
    if (sound->IsImmediately() && !sound->GetInPause())
        return StartImmediately(*sound);
    sound->stateTime = waitingStateTimeMs;
    // One that has been chosen, and is about to get its channel, is not put back among those that wait.
    if (!sound->list) {
        MarkStarted(*sound);
        waitingList.InsertSorted(*sound);
    }
    return true;
}

bool SndKernel::StartImmediately(SndBase& sound)
{
    // It may wait already, and a sound is on one list at most.
    Unlist(sound);
    MarkStarted(sound);
    if (!sound.Is3D())
        return StartChannel(&sound);
    if (!activeMicrophone)
        return EmulateOrDelete(sound);
    if (sound.GetChannelFlags() & ChanCutOut) {
        sound.CalcDistSqr(activeMicrophone->GetGlobalPosition());
        if (sound.IsDistGTMax())
            return EmulateOrDelete(sound);
    }
    return StartChannel(&sound);
}

bool SndKernel::IsLongEnough(const SndBase& sound) const
{
    return sound.GetRemainLength() >= static_cast<unsigned long>(options.minEmulationLength);
}

bool SndKernel::EmulateOrDelete(SndBase& sound)
{
    if (sound.IsEmulation() && IsLongEnough(sound) && EmulateSound(&sound))
        return true;
    delete &sound;
    return false;
}

bool SndKernel::StartChannel(SndBase* sound)
{
    if (!driver)
        return false;
    if (!sound->fadeOutChannel && GetAudibleCount() >= maxAudible && !sound->IsMusic())
        return false;
    if (sound->Is3D() && !activeMicrophone)
        return false;
    SndFile* file = sound->sndFile;
    const bool isNewFile = !file;
    if (isNewFile) {
        file = OpenFileOf(*sound);
        if (!file)
            return false;
        sound->soundLength = file->GetSoundLength();
    }
    SndChannel* channel = driver->CreateChannel(sound->GetChannelFlags(), file, sound->fxList);
    if (!channel) {
        if (isNewFile)
            delete file;
        return false;
    }
    if (sound->IsFadeIn())
        channel->FadeIn(sound->fadeDuration);
    sound->sndChannel = channel;
    if (!playingList.Holds(*sound)) {
        // Music that an observer starts anew can stand among the chosen.
        Unlist(*sound);
        playingList.InsertSorted(*sound);
    }
    // A new channel stands at 1.0 already.
    const float outputGain = sound->GetOutputGain();
    if (outputGain >= 0.0F && outputGain < 1.0F)
        channel->SetGain(outputGain);
    sound->Play(file);
    if (sound->newFrequency != 0)
        channel->SetFrequency(sound->newFrequency);
    channel->Play();
    return true;
}

bool SndKernel::StartMusic(SndBase& instance)
{
    MarkStarted(instance);
    return StartChannel(&instance);
}

void SndKernel::GiveUpFile(SndBase& instance)
{
    if (!instance.fadeOutChannel)
        Unlist(instance);
    SndFile* file = instance.sndFile;
    instance.sndFile = nullptr;
    instance.CloseAndDelete(file);
}

bool SndKernel::EmulateSound(SndBase* sound)
{
    SndFile* file = sound->sndFile;
    if (!file) {
        file = OpenFileOf(*sound);
        if (!file)
            return false;
        sound->soundLength = file->GetSoundLength();
    }
    sound->Play(file);
    const bool goesOn = sound->Emulate();
    if (goesOn)
        emulatedList.InsertSorted(*sound);
    return goesOn;
}

unsigned long SndKernel::GetLength(const PString& substName, const PString& fileName)
{
    if (const SndBase* like = FindLikeSound(substName, fileName, nullptr))
        return like->sndFile ? like->sndFile->GetSoundLength() : like->soundLength;
    SndFile* file = SndFile::OpenFile(substName, fileName);
    if (!file)
        return 0;
    const unsigned long length = file->GetSoundLength();
    delete file;
    return length;
}

template<class Matches>
void SndKernel::DeleteListed(SndList& list, Matches matches)
{
    SoundWalk walk(*this, list, SoundWalk::FromHead, SoundWalk::Visit);
    while (SndBase* sound = walk.Next()) {
        if (!matches(*sound) || sound->IsBeingTold())
            continue;
        Unlist(*sound);
        delete sound;
    }
}

void SndKernel::StopAll()
{
    for (SndList* list : {&playingList, &emulatedList, &waitingList})
        DeleteListed(*list, [](const SndBase&) { return true; });
    // What observers have started in answer ends too. From here on they start nothing more, so that this
    // comes to an end and nothing is left.
    const bool refusedBefore = std::exchange(refusesSounds, true);
    DeleteAllSounds(0);
    refusesSounds = refusedBefore;
}

void SndKernel::StopAll2D()
{
    for (SndList* list : {&playingList, &emulatedList, &waitingList})
        DeleteListed(*list, [](const SndBase& sound) { return !sound.HasAnyFlag(Flag3D | FlagMusic); });
    DeleteAllSounds(2);
}

void SndKernel::StopAll3D()
{
    for (SndList* list : {&playingList, &emulatedList, &waitingList})
        DeleteListed(*list, [](const SndBase& sound) { return sound.Is3D(); });
    DeleteAllSounds(3);
}

int SndKernel::OnDriverEvent(int event, void* data)
{
    if (event == SndChannelEnded)
        OnChannelEnded(static_cast<SndChannel*>(data));
    else if (event == SndFileChanged)
        OnFileChanged(*static_cast<SndFileChange*>(data));
    return 0;
}

SndBase* SndKernel::FindByChannel(const SndChannel* channel) const
{
    if (!channel)
        return nullptr;
    for (SndBase* sound = playingList.GetHead(); sound; sound = playingList.GetNext(*sound)) {
        if (sound->sndChannel == channel || sound->fadeOutChannel == channel)
            return sound;
    }
    return nullptr;
}

void SndKernel::OnChannelEnded(SndChannel* channel)
{
    SndBase* sound = FindByChannel(channel);
    if (!sound)
        return;
    if (sound->sndChannel == channel) {
        channel->SetSndFile(nullptr);
        sound->sndChannel = nullptr;
    }
    else {
        sound->fadeOutChannel = nullptr;
        SndFile* file = channel->GetSndFile();
        channel->SetSndFile(nullptr);
        SndBase::Telling telling(*sound);
        sound->CloseAndDelete(file);
    }
    if (!sound->IsAudible())
        delete sound;
}

void SndKernel::OnFileChanged(const SndFileChange& change)
{
    SndBase* sound = FindByChannel(change.channel);
    if (!sound)
        return;
    SndBase::Telling telling(*sound);
    if (sound->sndChannel == change.channel)
        sound->MoveOnTo(change.newFile);
    else if (change.oldFile) {
        change.oldFile->ClearQueue();
        sound->CloseAndDelete(change.oldFile);
    }
}

} // namespace Quon
