// The full update and the allocation of channels.

#include "tests/kernel/UpdateModel.h"

#include <algorithm>

namespace Quon
{

// The weight can be infinite in a large crowd, and has no say where there is no distance.
static float GetWeightedDistance(const ModelSound& sound)
{
    return sound.distSqr == 0.0F ? 0.0F : sound.multiplier * sound.distSqr;
}

bool UpdateModel::IsLess(int a, int b) const
{
    const ModelSound& soundA = *sounds.at(a);
    const ModelSound& soundB = *sounds.at(b);
    if (soundA.priority != soundB.priority)
        return soundA.priority < soundB.priority;
    if (useMultiplier)
        return GetWeightedDistance(soundA) > GetWeightedDistance(soundB);
    return soundA.distSqr > soundB.distSqr;
}

void UpdateModel::InsertSorted(ModelList& list, int id)
{
    std::size_t place = 0;
    while (place < list.size() && IsLess(list[place], id))
        ++place;
    list.insert(list.begin() + static_cast<std::ptrdiff_t>(place), id);
}

void UpdateModel::TakeOffLists(int id)
{
    for (ModelList* list : {&playing, &emulated, &waiting, &chosen})
        std::erase(*list, id);
}

bool UpdateModel::IsOn(const ModelList& list, int id) const
{
    return std::find(list.begin(), list.end(), id) != list.end();
}

// A walk visits the sounds that stood on the list when it began...
std::vector<ModelSoundPtr> UpdateModel::Snapshot(const ModelList& list) const
{
    std::vector<ModelSoundPtr> standing;
    for (int id : list)
        standing.push_back(sounds.at(id));
    return standing;
}

// ...but for those that an observer has ended, taken off the list or started meanwhile.
bool UpdateModel::IsStill(const ModelList& list, const ModelSoundPtr& sound) const
{
    return Find(sound->id) && IsOn(list, sound->id) && !sound->isNew;
}

void UpdateModel::Deliver(std::vector<DriverEvent>& events)
{
    for (const DriverEvent& event : std::exchange(events, {})) {
        if (event.isEnd)
            OnChannelEnded(event.channel);
        else
            OnFileChanged(event.channel);
    }
}

void UpdateModel::Update(float seconds)
{
    elapsed += static_cast<unsigned int>(static_cast<double>(seconds) * 1000.0);
    if (elapsed < 40)
        return;
    log.push_back("BeginUpdate " + std::to_string(elapsed));
    Deliver(atBegin);

    Vector3 listener{0.0F, 0.0F, 0.0F};
    if (hasListener) {
        if (listenerHasChanged) {
            listenerChanged = true;
            log.push_back("SetListenerPosition " + ToText(listenerPosition));
            log.push_back("SetListenerOrientation 0 0 -1, 0 1 0");
        }
        listenerHasChanged = false;
        listener = listenerPosition;
    }
    const bool listenerMoved = std::exchange(listenerChanged, false);
    for (const auto& [id, sound] : sounds)
        sound->isNew = false;
    isOnItsWay = true;

    const int due = CountDown(listener);
    UpdateEmulated(seconds, listener, listenerMoved);
    UpdatePlaying(seconds, listener, listenerMoved);
    if (static_cast<int>(emulated.size() + playing.size()) + due <= maxAudible)
        StartAll();
    else
        Allocate();

    log.push_back("EndUpdate");
    Deliver(atEnd);
    isOnItsWay = false;
    elapsed = 0;
}

int UpdateModel::CountDown(const Vector3& listener)
{
    int due = 0;
    for (int id : waiting) {
        ModelSound& sound = *sounds.at(id);
        const long left = sound.delay - static_cast<long>(elapsed);
        sound.delay = static_cast<int>(std::max(left, 0L));
        if (left <= 0 && !sound.Has(FlagInPause)) {
            ++due;
            CalcDistSqr(sound, listener);
        }
    }
    return due;
}

void UpdateModel::UpdateEmulated(float seconds, const Vector3& listener, bool listenerMoved)
{
    std::vector<ModelSoundPtr> walk = Snapshot(emulated);
    std::reverse(walk.begin(), walk.end());
    for (const ModelSoundPtr& sound : walk) {
        if (!IsStill(emulated, sound))
            continue;
        if (SndUpdate(sound, seconds, listener, listenerMoved))
            sound->stateTime += elapsed;
        else
            Destroy(sound);
    }
}

void UpdateModel::UpdatePlaying(float seconds, const Vector3& listener, bool listenerMoved)
{
    for (const ModelSoundPtr& sound : Snapshot(playing)) {
        if (!IsStill(playing, sound))
            continue;
        if (!SndUpdate(sound, seconds, listener, listenerMoved)) {
            TakeOffLists(sound->id);
            Destroy(sound);
            continue;
        }
        sound->stateTime += elapsed;
        const bool hasToGo =
            sound->Has(FlagInPause) || (sound->Has(Flag3D) && !hasListener) || sound->Has(FlagDistGTMax);
        sound->flags &= ~(FlagDistLTMax | FlagDistGTMax);
        sound->flags |= hasToGo ? FlagDistGTMax : FlagDistLTMax;
        if (hasToGo) {
            TakeOffLists(sound->id);
            EmulateOrDestroy(sound);
        }
    }
}

// There is room for all.
void UpdateModel::StartAll()
{
    for (const ModelSoundPtr& sound : Snapshot(emulated)) {
        if (!IsStill(emulated, sound) || sound->Has(FlagInPause | FlagPolyline))
            continue;
        if (sound->Has(Flag3D) && !(hasListener && sound->Has(FlagDistLTMax)))
            continue;
        TakeOffLists(sound->id);
        if (!StartChannel(sound))
            Destroy(sound);
    }
    for (const ModelSoundPtr& sound : Snapshot(waiting)) {
        if (!IsStill(waiting, sound) || sound->delay > 0)
            continue;
        TakeOffLists(sound->id);
        if (sound->Has(FlagInPause) || (sound->Has(Flag3D) && !hasListener) || sound->Has(FlagDistGTMax))
            EmulateOrDestroy(sound);
        else if (!StartChannel(sound))
            Destroy(sound);
    }
}

void UpdateModel::Allocate()
{
    useMultiplier = false;
    RateDuplicates();
    useMultiplier = true;
    for (ModelList* list : {&playing, &emulated, &waiting})
        Sort(*list);
    Choose();
    DisplaceLosers();
    StartChosen();
    DisplaceWaiting();
}

void UpdateModel::RateDuplicates()
{
    std::vector<int> rated;
    for (const ModelList* list : {&playing, &emulated, &waiting}) {
        for (int id : *list) {
            ModelSound& sound = *sounds.at(id);
            sound.multiplier = 1.0F;
            for (int other : rated) {
                ModelSound& earlier = *sounds.at(other);
                if (earlier.fileName != sound.fileName || earlier.owner != sound.owner)
                    continue;
                ModelSound& loser = IsLess(other, id) ? earlier : sound;
                loser.multiplier *= 1.3F;
            }
            rated.push_back(id);
        }
    }
}

void UpdateModel::Sort(ModelList& list)
{
    for (int pass = 0; pass < 2; ++pass) {
        ModelList sorted;
        while (!list.empty()) {
            InsertSorted(sorted, list.back());
            list.pop_back();
        }
        list.swap(sorted);
    }
}

void UpdateModel::Choose()
{
    int kept = 0;
    for (int id : ModelList(playing)) {
        if (sounds.at(id)->stateTime < 200) {
            std::erase(playing, id);
            chosen.push_back(id);
            ++kept;
        }
    }
    int p = PickBest(playing);
    int e = PickBest(emulated);
    int w = PickBest(waiting);
    for (; kept < maxAudible; ++kept) {
        int best = p;
        if (e && (!best || IsLess(best, e)))
            best = e;
        if (w && (!best || IsLess(best, w)))
            best = w;
        if (!best)
            break;
        if (best == p)
            p = PickBest(playing);
        else if (best == e)
            e = PickBest(emulated);
        else
            w = PickBest(waiting);
        chosen.push_back(best);
    }
    if (p)
        InsertSorted(playing, p);
    if (e)
        InsertSorted(emulated, e);
    if (w)
        InsertSorted(waiting, w);
}

int UpdateModel::PickBest(ModelList& list)
{
    int best = 0;
    for (int id : list) {
        if (!IsEligible(id))
            continue;
        if (!best || sounds.at(id)->Has(FlagMusic) || IsLess(best, id))
            best = id;
        if (sounds.at(best)->Has(FlagMusic))
            break;
    }
    std::erase(list, best);
    return best;
}

bool UpdateModel::IsEligible(int id) const
{
    const ModelSound& sound = *sounds.at(id);
    return !sound.Has(FlagInPause | FlagPolyline) && sound.delay <= 0 && sound.Has(FlagDistLTMax) &&
        sound.stateTime >= 200 && !sound.isNew;
}

void UpdateModel::DisplaceLosers()
{
    for (const ModelSoundPtr& sound : Snapshot(playing)) {
        if (!IsStill(playing, sound))
            continue;
        TakeOffLists(sound->id);
        if (!sound->Has(FlagNoEmulation) && IsLongEnough(*sound) && Emulate(sound))
            InsertSorted(emulated, sound->id);
        else
            Destroy(sound);
    }
}

void UpdateModel::StartChosen()
{
    while (!chosen.empty()) {
        const ModelSoundPtr sound = sounds.at(chosen.front());
        chosen.pop_front();
        if (sound->channel || sound->fadeOutChannel)
            InsertSorted(playing, sound->id);
        else if (!StartChannel(sound))
            Destroy(sound);
    }
}

void UpdateModel::DisplaceWaiting()
{
    for (const ModelSoundPtr& sound : Snapshot(waiting)) {
        if (!IsStill(waiting, sound) || sound->delay > 0)
            continue;
        TakeOffLists(sound->id);
        const bool isRefused = !sound->Has(FlagNoEmulation) && !IsLongEnough(*sound);
        if (isRefused || !EmulateSound(sound))
            Destroy(sound);
    }
}

} // namespace Quon
