// How a single sound starts, runs and ends.

#include "harmonet/output/SndDriver.h"
#include "tests/kernel/UpdateModel.h"

#include <algorithm>

namespace Quon
{

unsigned long ModelFile::GetRemainLength() const
{
    return current < frames ? static_cast<unsigned long>(double(frames - current) / rateHz * 1000.0) : 0;
}

int ModelFile::Skip(int count)
{
    const int skipped = std::clamp(count, 0, frames - current);
    current += skipped;
    return skipped;
}

// The file that the sound has, or else the one that it names, whose length it then knows.
ModelFilePtr UpdateModel::Open(ModelSound& sound) const
{
    if (sound.file)
        return sound.file;
    const auto found = files.find(sound.fileName);
    if (found == files.end())
        return nullptr;
    sound.soundLength = found->second.GetLength();
    return std::make_shared<ModelFile>(found->second);
}

ModelSoundPtr UpdateModel::FindLike(const ModelSound& sound) const
{
    for (const ModelList* list : {&playing, &emulated, &waiting}) {
        for (int id : *list) {
            const ModelSoundPtr& other = sounds.at(id);
            if (id != sound.id && other->fileName == sound.fileName && other->owner == sound.owner)
                return other;
        }
    }
    return nullptr;
}

bool UpdateModel::PlaySound(const ModelSoundPtr& sound)
{
    if (!sound->file) {
        if (const ModelSoundPtr like = FindLike(*sound)) {
            sound->soundLength = like->file ? like->file->GetLength() : like->soundLength;
        }
        else {
            sound->file = Open(*sound);
            if (!sound->file)
                return false;
        }
    }
    if (sound->Has(FlagImmediately) && !sound->Has(FlagInPause)) {
        TakeOffLists(sound->id);
        sound->isNew = isOnItsWay;
        if (sound->Has(Flag3D)) {
            if (!hasListener)
                return EmulateOrDestroy(sound);
            if (sound->cutout) {
                CalcDistSqr(*sound, listenerPosition);
                if (sound->Has(FlagDistGTMax))
                    return EmulateOrDestroy(sound);
            }
        }
        return StartChannel(sound);
    }
    sound->stateTime = 1000;
    // Who has been chosen from the waiting sounds waits no longer, and cannot be put there again.
    if (!IsOn(waiting, sound->id) && !IsOn(chosen, sound->id)) {
        sound->isNew = isOnItsWay;
        InsertSorted(waiting, sound->id);
    }
    return true;
}

bool UpdateModel::StartChannel(const ModelSoundPtr& sound)
{
    const bool passesLimit = sound->fadeOutChannel || sound->Has(FlagMusic);
    if (!passesLimit && static_cast<int>(playing.size()) >= maxAudible)
        return false;
    unsigned int flags = 0;
    if (sound->Has(Flag3D)) {
        if (!hasListener)
            return false;
        flags |= ChanPositional;
        if (sound->cutout)
            flags |= ChanCutOut;
        if (sound->Has(FlagDisableMicFX))
            flags |= ChanDisableMicFX;
    }
    if (sound->Has(FlagLooping))
        flags |= ChanLooping;
    if (sound->Has(FlagChgFrequency))
        flags |= ChanChgFrequency;
    const ModelFilePtr file = Open(*sound);
    if (!file)
        return false;
    const std::string what = std::to_string(flags) + ' ' + (file->isBlock ? "memory" : file->name) + '@' +
        std::to_string(file->current) + " fx";
    if (static_cast<int>(channels.size()) >= channelLimit) {
        log.push_back("CreateChannel refused " + what);
        return false;
    }
    const int channel = ++lastChannel;
    channels[channel] = file;
    channelLoops[channel] = sound->Has(FlagLooping);
    log.push_back("CreateChannel c" + std::to_string(channel) + ' ' + what);
    if (sound->Has(FlagFadeIn))
        Say(channel, "FadeIn " + std::to_string(sound->fadeDuration));
    sound->channel = channel;
    if (!IsOn(playing, sound->id)) {
        TakeOffLists(sound->id);
        InsertSorted(playing, sound->id);
    }
    const float outputGain = GetOutputGain(*sound);
    if (outputGain >= 0.0F && outputGain < 1.0F)
        Say(channel, "SetGain " + ToText(outputGain));
    Play(sound, file);
    if (sound->newFrequency != 0)
        Say(channel, "SetFrequency " + std::to_string(sound->newFrequency));
    Say(channel, "Play");
    return true;
}

bool UpdateModel::EmulateSound(const ModelSoundPtr& sound)
{
    const ModelFilePtr file = Open(*sound);
    if (!file)
        return false;
    Play(sound, file);
    const bool goesOn = Emulate(sound);
    if (goesOn)
        InsertSorted(emulated, sound->id);
    return goesOn;
}

bool UpdateModel::EmulateOrDestroy(const ModelSoundPtr& sound)
{
    if (!sound->Has(FlagNoEmulation) && IsLongEnough(*sound) && EmulateSound(sound))
        return true;
    Destroy(sound);
    return false;
}

void UpdateModel::Play(const ModelSoundPtr& sound, const ModelFilePtr& file)
{
    if (sound->Has(Flag3D) && sound->channel) {
        // No sound here has had its cone set, and one that has not is silent all around.
        Say(sound->channel, "SetCone 0 0 0");
        Say(sound->channel,
            "SetMinMaxDistance " + ToText(sound->minDistance) + ' ' + ToText(sound->maxDistance) + ' ' +
                std::to_string(sound->cutout));
        UpdatePosition(*sound);
        sound->hasMoved = true;
    }
    sound->file = file;
    if (!sound->Has(FlagPlaying)) {
        sound->flags |= FlagPlaying;
        if (sound->hasGroup) {
            sound->isTold = true;
            Notify("begin " + GetName(*sound) + ' ' + sound->fileName, {Note::Begin, sound->id});
            sound->isTold = false;
        }
    }
    sound->stateTime = 0;
}

bool UpdateModel::Emulate(const ModelSoundPtr& sound)
{
    if (sound->channel)
        StopChannel(sound->channel);
    if (sound->fadeOutChannel)
        ReleaseFadeOut(sound);
    sound->stateTime = 0;
    return sound->file != nullptr;
}

void UpdateModel::Destroy(const ModelSoundPtr& sound)
{
    sound->isTold = true;
    if (sound->hasGroup)
        NotifyEnd(*sound);
    if (sound->channel)
        StopChannel(sound->channel);
    if (sound->fadeOutChannel)
        ReleaseFadeOut(sound);
    sound->isTold = true;
    TakeOffLists(sound->id);
    RemoveFromTable(sound->id);
    sounds.erase(sound->id);
    CloseQueue(*sound, std::exchange(sound->file, nullptr));
}

void UpdateModel::NotifyEnd(ModelSound& sound)
{
    const std::string who = ' ' + GetName(sound) + ' ' + sound.fileName;
    if (!sound.Has(FlagPlaying)) {
        Notify("begin" + who, {Note::Begin, sound.id});
        const int length = static_cast<int>(static_cast<std::uint32_t>(sound.soundLength));
        Notify("abort" + who + ' ' + std::to_string(length), {Note::Abort, sound.id});
        return;
    }
    std::uint32_t left = 0;
    if (sound.Has(FlagLooping))
        left = 0xFFFFFFFF;
    else if (sound.channel)
        left = static_cast<std::uint32_t>(channels.at(sound.channel)->GetRemainLength());
    else if (sound.file)
        left = static_cast<std::uint32_t>(sound.file->GetRemainLength());
    if (!sound.Has(FlagLooping))
        left += static_cast<std::uint32_t>(GetQueueLength(sound));
    const int remaining = static_cast<int>(left);
    if (remaining != 0)
        Notify("abort" + who + ' ' + std::to_string(remaining), {Note::Abort, sound.id});
    else
        Notify("end" + who, {Note::End, sound.id});
}

void UpdateModel::ReleaseFadeOut(const ModelSoundPtr& sound)
{
    const ModelFilePtr file = channels.at(sound->fadeOutChannel);
    StopChannel(sound->fadeOutChannel);
    CloseQueue(*sound, file);
}

// The last one first, then the head.
void UpdateModel::CloseQueue(ModelSound& sound, const ModelFilePtr& file)
{
    if (!file)
        return;
    CloseBehind(sound, file);
    CloseFile(sound, *file);
}

void UpdateModel::CloseBehind(ModelSound& sound, const ModelFilePtr& file)
{
    std::vector<ModelFilePtr> behind;
    for (ModelFilePtr next = std::exchange(file->next, nullptr); next;) {
        behind.push_back(next);
        next = std::exchange(next->next, nullptr);
    }
    for (; !behind.empty(); behind.pop_back())
        CloseFile(sound, *behind.back());
}

void UpdateModel::CloseFile(ModelSound& sound, const ModelFile& file)
{
    if (!file.isBlock || !sound.hasGroup)
        return;
    const bool wasTold = std::exchange(sound.isTold, true);
    Notify("free " + GetName(sound) + ' ' + file.name, {Note::Free, sound.id});
    sound.isTold = wasTold;
}

void UpdateModel::Say(int channel, const std::string& call)
{
    log.push_back('c' + std::to_string(channel) + ' ' + call);
}

void UpdateModel::StopChannel(int& channel)
{
    Say(channel, "Stop");
    channels.erase(channel);
    channel = 0;
}

unsigned long UpdateModel::GetQueueLength(const ModelSound& sound) const
{
    unsigned long length = 0;
    for (ModelFilePtr file = sound.file ? sound.file->next : nullptr; file; file = file->next)
        length += file->GetLength();
    return length;
}

unsigned long UpdateModel::GetRemainLength(const ModelSound& sound) const
{
    if (sound.Has(FlagLooping) && (!sound.Has(FlagFadeOut) || sound.fadeOutChannel))
        return 0xFFFFFFFF;
    if (sound.channel)
        return channels.at(sound.channel)->GetRemainLength() + GetQueueLength(sound);
    if (sound.fadeOutChannel)
        return channels.at(sound.fadeOutChannel)->GetRemainLength();
    if (sound.Has(FlagFadeOut))
        return static_cast<unsigned long>(sound.fadeDuration);
    if (sound.file)
        return sound.file->GetRemainLength() + GetQueueLength(sound);
    return sound.soundLength;
}

float UpdateModel::GetOutputGain(const ModelSound& sound) const
{
    if (sound.Has(FlagMusic))
        return music[sound.musicHandle].gain * mainGains.at(FlagMusic) * sound.gain;
    return groupGain * mainGains.at(sound.flags & Flag3D) * sound.gain;
}

void UpdateModel::SetGain(ModelSound& sound, float gain)
{
    if (gain >= 0.0F && gain <= 1.0F)
        sound.gain = gain;
    if (const int channel = sound.channel ? sound.channel : sound.fadeOutChannel)
        Say(channel, "SetGain " + ToText(GetOutputGain(sound)));
}

void UpdateModel::UpdatePosition(ModelSound& sound)
{
    Say(sound.channel, "SetPosition " + ToText(sound.position));
    Say(sound.channel, "SetDirection 0 0 -1");
}

void UpdateModel::CalcDistSqr(ModelSound& sound, const Vector3& listener) const
{
    if (!sound.Has(Flag3D))
        return;
    const float x = sound.position.x - listener.x;
    const float y = sound.position.y - listener.y;
    const float z = sound.position.z - listener.z;
    sound.distSqr = x * x + y * y + z * z;
    sound.flags &= ~(FlagDistLTMax | FlagDistGTMax);
    const float m = sound.maxDistance * sound.maxDistance;
    if (!sound.cutout || m > sound.distSqr)
        sound.flags |= FlagDistLTMax;
    if (sound.cutout && m * 1.02F < sound.distSqr)
        sound.flags |= FlagDistGTMax;
}

bool UpdateModel::FadeOut(const ModelSoundPtr& sound, int ms)
{
    sound->flags |= FlagFadeOut;
    if (!sound->channel) {
        Destroy(sound);
        return false;
    }
    if (sound->fadeOutChannel)
        ReleaseFadeOut(sound);
    const int channel = std::exchange(sound->channel, 0);
    sound->fadeOutChannel = channel;
    sound->file = nullptr;
    CloseBehind(*sound, channels.at(channel));
    Say(channel, "FadeOut " + std::to_string(ms));
    return true;
}

bool UpdateModel::SndUpdate(
    const ModelSoundPtr& sound, float seconds, const Vector3& listener, bool listenerMoved)
{
    if (sound->Has(Flag3D)) {
        if (sound->Has(FlagInPause))
            return true;
        if (listenerMoved || sound->hasMoved)
            CalcDistSqr(*sound, listener);
        if (!sound->Has(FlagNotMovable) && sound->channel && sound->hasMoved)
            UpdatePosition(*sound);
        sound->hasMoved = false;
    }
    if (!sound->Has(FlagPlaying) || sound->channel || sound->fadeOutChannel || !sound->file)
        return true;
    const auto ms = static_cast<std::uint32_t>(static_cast<double>(seconds) * 1000.0);
    if (GetRemainLength(*sound) < 500UL + ms)
        return false;
    const std::uint32_t hz = sound->newFrequency != 0 ? static_cast<std::uint32_t>(sound->newFrequency)
                                                      : static_cast<std::uint32_t>(sound->file->rateHz);
    return Advance(sound, hz * ms / 1000U);
}

bool UpdateModel::Advance(const ModelSoundPtr& sound, std::uint32_t samples)
{
    std::uint32_t total = 0;
    for (ModelFilePtr file = sound->file; file; file = file->next)
        total += static_cast<std::uint32_t>(file->frames);
    if (total == 0)
        return false;
    int rest = static_cast<int>(samples % total);
    const int skipped = sound->file->Skip(rest);
    if (skipped == rest)
        return true;
    rest -= skipped;
    if (sound->Has(FlagLooping)) {
        sound->file->current = 0;
        return sound->file->Skip(rest) == rest;
    }
    while (sound->file->next) {
        const ModelFilePtr passed = sound->file;
        sound->file = std::exchange(passed->next, nullptr);
        CloseFile(*sound, *passed);
        if (rest == 0)
            return true;
        if (rest < sound->file->frames) {
            rest -= sound->file->Skip(rest);
            if (rest == 0)
                return true;
        }
        else {
            rest -= sound->file->frames;
        }
    }
    return false;
}

void UpdateModel::OnChannelEnded(int channel)
{
    const auto entry = channels.find(channel);
    if (entry == channels.end())
        return;
    const ModelFilePtr file = entry->second;
    channels.erase(entry);
    for (int id : playing) {
        const ModelSoundPtr sound = sounds.at(id);
        if (sound->channel != channel && sound->fadeOutChannel != channel)
            continue;
        if (sound->channel == channel) {
            sound->channel = 0;
        }
        else {
            sound->fadeOutChannel = 0;
            CloseQueue(*sound, file);
        }
        if (!sound->channel && !sound->fadeOutChannel)
            Destroy(sound);
        return;
    }
}

void UpdateModel::OnFileChanged(int channel)
{
    const auto entry = channels.find(channel);
    if (entry == channels.end() || !entry->second->next)
        return;
    entry->second = entry->second->next;
    for (int id : playing) {
        const ModelSoundPtr sound = sounds.at(id);
        if (sound->channel != channel)
            continue;
        ModelFilePtr last = sound->file;
        while (last->next != entry->second)
            last = last->next;
        last->next = nullptr;
        CloseQueue(*sound, std::exchange(sound->file, entry->second));
        return;
    }
}

} // namespace Quon
