#include "harmonet/kernel/SndList.h"

#include "harmonet/kernel/SoundWalk.h"

#include <algorithm>
#include <cassert>
#include <utility>

namespace Quon
{

void SndList::Append(SndBase& sound)
{
    ForgetOrder();
    InsertBefore(head, sound);
}

void SndList::InsertSorted(SndBase& sound)
{
    IListNode* place = FindPlace(sound);
    InsertBefore(*place, sound);
    // A finger that stands right behind the place moves on to the new sound: so there is one for each run of
    // sounds that come one after the other.
    SndBase** finger = std::find(fingers.begin(), fingers.end(), ToSound(place));
    if (finger == fingers.end() || !*finger) {
        finger = &fingers[nextFinger];
        nextFinger = (nextFinger + 1) % fingers.size();
    }
    *finger = &sound;
}

// The first node, from the head, whose sound is not less important; the list's head if there is none.
IListNode* SndList::FindPlace(const SndBase& sound)
{
    IListNode* place = isInOrder ? FindNear(sound) : head.next;
    while (isInOrder && place->previous != &head && !(*ToSound(place->previous) < sound))
        place = place->previous;
    while (place != &head && *ToSound(place) < sound)
        place = place->next;
    return place;
}

// A node near the place for the sound in a list that is in order: of the known sounds and the fingers that
// are not less important the one that stands first.
IListNode* SndList::FindNear(const SndBase& sound)
{
    if (static_cast<std::size_t>(count) > 2 * (known.size() - numGone) + fingers.size())
        LearnAll();
    SndBase* nearest = FindKnown(sound);
    for (SndBase* finger : fingers) {
        // Of equals the finger stands in front, since the latest does.
        if (finger && !(*finger < sound) && (!nearest || !(*nearest < *finger)))
            nearest = finger;
    }
    return nearest ? static_cast<IListNode*>(nearest) : &head;
}

// The first known sound that is not less important, or null. Those that have gone have no say; there are few
// of them.
SndBase* SndList::FindKnown(const SndBase& sound)
{
    std::size_t begin = 0;
    std::size_t end = known.size();
    while (begin < end) {
        const std::size_t half = begin + (end - begin) / 2;
        std::size_t middle = half;
        while (middle < end && !known[middle])
            ++middle;
        if (middle < end && *known[middle] < sound)
            begin = middle + 1;
        else
            end = half;
    }
    while (end < known.size() && !known[end])
        ++end;
    return end < known.size() ? known[end] : nullptr;
}

void SndList::LearnAll()
{
    known.resize(static_cast<std::size_t>(count));
    numGone = 0;
    std::size_t place = 0;
    ForEach([&](SndBase& sound) { MakeKnown(sound, place++); });
}

void SndList::Remove(SndBase& sound)
{
    assert(sound.list == this);
    TellWalks();
    Forget(sound);
    std::replace(fingers.begin(), fingers.end(), &sound, ToSound(sound.next));
    sound.Unlink();
    sound.list = nullptr;
    --count;
    numMusic -= sound.IsMusic() ? 1 : 0;
    if (count < 2)
        isInOrder = true;
}

// In a list of which little is known any more all of it is forgotten, so that no search meets many gaps.
void SndList::Forget(const SndBase& sound)
{
    if (sound.knownPlace >= known.size() || known[sound.knownPlace] != &sound)
        return;
    known[sound.knownPlace] = nullptr;
    ++numGone;
    // Mostly the most important leave, one after the other.
    for (; !known.empty() && !known.back(); --numGone)
        known.pop_back();
    if (2 * numGone > known.size()) {
        known.clear();
        numGone = 0;
    }
}

SndBase* SndList::TakeHead()
{
    SndBase* sound = GetHead();
    if (sound)
        Remove(*sound);
    return sound;
}

void SndList::InsertBefore(IListNode& place, SndBase& sound)
{
    assert(!sound.list);
    TellWalks();
    sound.LinkBefore(place);
    sound.list = this;
    ++count;
    numMusic += sound.IsMusic() ? 1 : 0;
}

void SndList::AddWalk(SoundWalk& walk)
{
    walk.outerWalk = std::exchange(innermostWalk, &walk);
}

void SndList::RemoveWalk(SoundWalk& walk)
{
    assert(innermostWalk == &walk);
    innermostWalk = walk.outerWalk;
}

void SndList::TellWalks()
{
    for (; innermostWalk; innermostWalk = innermostWalk->outerWalk)
        innermostWalk->TakeDown();
}

} // namespace Quon
