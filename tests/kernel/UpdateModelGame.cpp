// What the game does: its sounds, its music, its observers and its listener.

#include "harmonet/instances/Sound.h"
#include "tests/kernel/UpdateModel.h"

#include <algorithm>

namespace Quon
{

ModelSoundPtr UpdateModel::Find(int id) const
{
    const auto found = sounds.find(id);
    return found != sounds.end() && found->second->isInTable ? found->second : nullptr;
}

ModelSoundPtr UpdateModel::Add(std::uint32_t flags)
{
    const auto sound = std::make_shared<ModelSound>();
    sound->id = ++lastID;
    sound->flags = flags;
    sound->hasGroup = !(flags & FlagMusic);
    sounds[sound->id] = sound;
    GetBucket(sound->id).push_back(sound->id);
    return sound;
}

UpdateModel::Bucket& UpdateModel::GetBucket(int id)
{
    return buckets[static_cast<unsigned>(id) % buckets.size()];
}

void UpdateModel::RemoveFromTable(int id)
{
    sounds.at(id)->isInTable = false;
    Bucket& bucket = GetBucket(id);
    const auto place = std::find(bucket.begin(), bucket.end(), id);
    if (place == bucket.end())
        return;
    *place = bucket.back();
    bucket.pop_back();
}

std::vector<int> UpdateModel::GetTableOrder() const
{
    std::vector<int> ids;
    for (const Bucket& bucket : buckets)
        ids.insert(ids.end(), bucket.begin(), bucket.end());
    return ids;
}

int UpdateModel::New(std::uint32_t flags, const std::string& fileName)
{
    if (refusesSounds)
        return 0;
    const ModelSoundPtr sound = Add(flags);
    sound->fileName = fileName;
    return sound->id;
}

int UpdateModel::NewBlock(const std::string& blockName)
{
    const int id = New2D("");
    if (const ModelSoundPtr sound = Find(id)) {
        sound->file = std::make_shared<ModelFile>(files.at(blockName));
        sound->soundLength = sound->file->GetLength();
    }
    return id;
}

bool UpdateModel::StartSound(int id, int startFlags)
{
    static constexpr std::pair<int, std::uint32_t> flagsByStart[] = {{Sound::StartLooping, FlagLooping},
        {Sound::StartNotMovable, FlagNotMovable}, {Sound::StartNoEmulation, FlagNoEmulation},
        {Sound::StartImmediately, FlagImmediately}, {Sound::StartQueued, FlagQueued},
        {Sound::StartChgFrequency, FlagChgFrequency | FlagDisableMicFX}};
    const ModelSoundPtr sound = Find(id);
    if (!sound || sound->isTold || sound->Has(FlagPlaying) || sound->channel)
        return false;
    const bool loops = (startFlags & Sound::StartLooping) != 0;
    if (loops && sound->Has(FlagQueued))
        return false;
    for (const auto& [start, flags] : flagsByStart) {
        if ((startFlags & start) && !(loops && start == Sound::StartQueued))
            sound->flags |= flags;
    }
    return !refusesSounds && PlaySound(sound);
}

void UpdateModel::StopSound(int id)
{
    const ModelSoundPtr sound = Find(id);
    if (sound && !sound->isTold)
        Destroy(sound);
}

void UpdateModel::DeleteSound(int id)
{
    const ModelSoundPtr sound = Find(id);
    if (!sound || sound->isTold)
        return;
    sound->hasGroup = false;
    Destroy(sound);
}

bool UpdateModel::FadeOutSound(int id, int ms)
{
    const ModelSoundPtr sound = Find(id);
    return sound && !sound->isTold && FadeOut(sound, ms);
}

bool UpdateModel::Cat(int id, const std::string& fileName, bool isBlock)
{
    const ModelSoundPtr sound = Find(id);
    if (!sound || sound->Has(FlagLooping) || refusesSounds)
        return false;
    if (!sound->file && (sound->Has(FlagPlaying) || sound->fileName.empty()))
        return false;
    if (sound->Has(FlagPlaying) && !sound->Has(FlagQueued))
        return false;
    sound->flags |= FlagQueued;
    sound->file = Open(*sound);
    if (!sound->file)
        return false;
    const auto found = files.find(fileName);
    if (found == files.end() || found->second.isBlock != isBlock ||
        found->second.rateHz != sound->file->rateHz)
        return false;
    const auto file = std::make_shared<ModelFile>(found->second);
    sound->soundLength += file->GetLength();
    ModelFilePtr last = sound->file;
    while (last->next)
        last = last->next;
    last->next = file;
    return true;
}

void UpdateModel::SetSoundPriority(int id, int priority)
{
    if (const ModelSoundPtr sound = Find(id))
        sound->priority = priority;
}

void UpdateModel::SetSoundDelay(int id, int ms)
{
    const ModelSoundPtr sound = Find(id);
    if (sound && !sound->Has(FlagPlaying))
        sound->delay = ms;
}

void UpdateModel::SetSoundFadeIn(int id, int ms)
{
    const ModelSoundPtr sound = Find(id);
    if (!sound || sound->Has(FlagPlaying))
        return;
    sound->fadeDuration = ms;
    sound->flags |= FlagFadeIn;
}

void UpdateModel::SetSoundGain(int id, float gain)
{
    if (const ModelSoundPtr sound = Find(id))
        SetGain(*sound, gain);
}

void UpdateModel::SetGain(float gain)
{
    groupGain = gain;
    Refresh([](const ModelSound& sound) { return sound.hasGroup; });
}

void UpdateModel::SetMainGain(std::uint32_t kind, float gain)
{
    mainGains[kind] = gain;
    Refresh([kind](const ModelSound& sound) { return (sound.flags & (Flag3D | FlagMusic)) == kind; });
}

void UpdateModel::Refresh(const std::function<bool(const ModelSound&)>& matches)
{
    for (int id : GetTableOrder()) {
        if (matches(*sounds.at(id)))
            SetGain(*sounds.at(id), -1.0F);
    }
}

void UpdateModel::SetSoundPosition(int id, const Vector3& position)
{
    const ModelSoundPtr sound = Find(id);
    if (!sound || !sound->Has(Flag3D))
        return;
    sound->position = position;
    sound->hasMoved = true;
}

void UpdateModel::SetSoundMinMaxDistance(int id, float minDistance, float maxDistance, bool cutout)
{
    const ModelSoundPtr sound = Find(id);
    if (!sound || !sound->Has(Flag3D))
        return;
    sound->minDistance = minDistance;
    sound->maxDistance = maxDistance;
    sound->cutout = cutout;
    if (sound->channel)
        Say(sound->channel,
            "SetMinMaxDistance " + ToText(minDistance) + ' ' + ToText(maxDistance) + ' ' +
                std::to_string(cutout));
}

bool UpdateModel::SetFrequency(int id, unsigned long hz)
{
    const ModelSoundPtr sound = Find(id);
    if (!sound || (hz != 0 && (hz < 100 || hz > 100000)))
        return false;
    if (sound->Has(FlagPlaying) && !sound->Has(FlagChgFrequency))
        return false;
    if (sound->channel)
        Say(sound->channel, "SetFrequency " + std::to_string(hz));
    sound->newFrequency = hz;
    sound->flags |= FlagChgFrequency;
    return true;
}

void UpdateModel::SetOwner(int id, int owner)
{
    if (const ModelSoundPtr sound = Find(id))
        sound->owner = owner;
}

void UpdateModel::SetInPause(int id, bool on)
{
    if (const ModelSoundPtr sound = Find(id))
        sound->flags = on ? sound->flags | FlagInPause : sound->flags & ~FlagInPause;
}

void UpdateModel::DeleteMatching(const std::function<bool(const ModelSound&)>& matches)
{
    std::vector<ModelSoundPtr> doomed;
    for (int id : GetTableOrder()) {
        if (matches(*sounds.at(id)))
            doomed.push_back(sounds.at(id));
    }
    for (const ModelSoundPtr& sound : doomed) {
        if (!Find(sound->id) || sound->isTold)
            continue;
        RemoveFromTable(sound->id);
        Destroy(sound);
    }
}

void UpdateModel::StopListed(const std::function<bool(const ModelSound&)>& matches)
{
    for (ModelList* list : {&playing, &emulated, &waiting}) {
        for (const ModelSoundPtr& sound : Snapshot(*list)) {
            if (!Find(sound->id) || !IsOn(*list, sound->id) || !matches(*sound) || sound->isTold)
                continue;
            TakeOffLists(sound->id);
            Destroy(sound);
        }
    }
}

void UpdateModel::StopAll()
{
    const auto isAny = [](const ModelSound&) { return true; };
    StopListed(isAny);
    // What observers have started in answer ends too, and then they can start no more.
    const bool refusedBefore = std::exchange(refusesSounds, true);
    DeleteMatching(isAny);
    refusesSounds = refusedBefore;
}

void UpdateModel::AddObserver(int number)
{
    const auto found = std::find_if(
        observers.begin(), observers.end(), [&](const Observer& entry) { return entry.number == number; });
    if (found != observers.end())
        found->active = true;
    else
        observers.push_back({number, true});
}

void UpdateModel::RemoveObserver(int number)
{
    for (Observer& entry : observers)
        entry.active = entry.active && entry.number != number;
    if (notifyDepth == 0)
        std::erase_if(observers, [](const Observer& entry) { return !entry.active; });
}

std::string UpdateModel::GetName(const ModelSound& sound) const
{
    return '#' + std::to_string(sound.id - idOffset);
}

void UpdateModel::Notify(const std::string& line, const Note& note)
{
    ++notifyDepth;
    for (std::size_t i = 0; i < observers.size(); ++i) {
        if (!observers[i].active)
            continue;
        const int number = observers[i].number;
        log.push_back(number > 0 ? 'o' + std::to_string(number) + ' ' + line : line);
        if (number == 0 && react)
            react(note);
    }
    if (--notifyDepth == 0)
        std::erase_if(observers, [](const Observer& entry) { return !entry.active; });
}

ModelSoundPtr UpdateModel::FindMusic(int handle) const
{
    return Find(music[handle].id);
}

bool UpdateModel::MusicFadeIn(int handle, const std::string& fileName, int ms, bool loop)
{
    if (refusesSounds)
        return false;
    ModelSoundPtr sound = FindMusic(handle);
    if (sound && sound->channel)
        return false;
    if (!sound) {
        sound = Add(FlagMusic);
        sound->musicHandle = handle;
    }
    else {
        // A piece that runs unheard is given up for the new one.
        if (!sound->fadeOutChannel)
            TakeOffLists(sound->id);
        CloseQueue(*sound, std::exchange(sound->file, nullptr));
    }
    sound->flags = FlagMusic | FlagDistLTMax;
    if (ms > 0) {
        sound->fadeDuration = ms;
        sound->flags |= FlagFadeIn;
    }
    if (loop)
        sound->flags |= FlagLooping;
    sound->fileName = fileName;
    music[handle].id = sound->id;
    SetGain(*sound, -1.0F);
    sound->isNew = isOnItsWay;
    if (StartChannel(sound))
        return true;
    music[handle].id = 0;
    Destroy(sound);
    return false;
}

bool UpdateModel::MusicCrossFade(int handle, const std::string& fileName, int ms, bool loop)
{
    MusicFadeOut(handle, ms);
    return MusicFadeIn(handle, fileName, ms, loop);
}

bool UpdateModel::MusicFadeOut(int handle, int ms)
{
    const ModelSoundPtr sound = FindMusic(handle);
    return sound && FadeOut(sound, ms);
}

void UpdateModel::MusicStop(int handle)
{
    if (const ModelSoundPtr sound = FindMusic(handle))
        Destroy(sound);
}

void UpdateModel::MusicSetGain(int handle, float gain)
{
    music[handle].gain = gain;
    if (const ModelSoundPtr sound = FindMusic(handle))
        SetGain(*sound, -1.0F);
}

void UpdateModel::ActivateListener(const Vector3& position)
{
    hasListener = true;
    listenerPosition = position;
    listenerHasChanged = false;
    listenerChanged = true;
    log.push_back("SetListenerPosition " + ToText(position));
    log.push_back("SetListenerOrientation 0 0 -1, 0 1 0");
}

void UpdateModel::MoveListener(const Vector3& position)
{
    if (!hasListener)
        return;
    listenerPosition = position;
    listenerHasChanged = true;
}

void UpdateModel::DropListener()
{
    hasListener = false;
}

void UpdateModel::Read(int channel, int sampleFrames)
{
    const auto found = channels.find(channel);
    if (found == channels.end())
        return;
    ModelFile& file = *found->second;
    while (true) {
        sampleFrames -= file.Skip(sampleFrames);
        if (sampleFrames == 0 || !channelLoops.at(channel) || file.frames == 0)
            return;
        file.current = 0;
    }
}

} // namespace Quon
