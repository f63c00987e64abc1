#include "harmonet/kernel/SndList.h"

#include <cassert>

namespace Quon
{

SndList::SndList()
    : lastInserted(&head)
{
}

void SndList::Append(SndBase& sound)
{
    ForgetOrder();
    InsertBefore(head, sound);
}

void SndList::InsertSorted(SndBase& sound)
{
    IListNode* place = FindPlace(sound);
    InsertBefore(*place, sound);
    lastInserted = &sound;
}

// The first node, from the head, whose sound is not less important; the list's head if there is none.
IListNode* SndList::FindPlace(const SndBase& sound)
{
    IListNode* place = isInOrder && lastInserted != &head ? lastInserted : head.next;
    if (place == &head)
        return place;
    while (isInOrder && place->previous != &head && !(*ToSound(place->previous) < sound))
        place = place->previous;
    while (place != &head && *ToSound(place) < sound)
        place = place->next;
    return place;
}

void SndList::Remove(SndBase& sound)
{
    assert(sound.list == this);
    if (lastInserted == &sound)
        lastInserted = sound.next;
    sound.Unlink();
    sound.list = nullptr;
    --count;
    numMusic -= sound.IsMusic() ? 1 : 0;
    if (count < 2)
        isInOrder = true;
}

SndBase* SndList::TakeHead()
{
    SndBase* sound = GetHead();
    if (sound)
        Remove(*sound);
    return sound;
}

void SndList::Reorder(std::span<SndBase* const> sounds)
{
    assert(static_cast<int>(sounds.size()) == count);
    IListNode* last = &head;
    for (std::size_t place = 0; place < sounds.size(); ++place) {
        if (place + prefetchDistance < sounds.size())
            PrefetchLinks(sounds[place + prefetchDistance]);
        SndBase* sound = sounds[place];
        last->next = sound;
        sound->previous = last;
        last = sound;
    }
    last->next = &head;
    head.previous = last;
    isInOrder = true;
    lastWalk.assign(sounds.begin(), sounds.end());
}

void SndList::InsertBefore(IListNode& place, SndBase& sound)
{
    assert(!sound.list);
    sound.LinkBefore(place);
    sound.list = this;
    ++count;
    numMusic += sound.IsMusic() ? 1 : 0;
}

} // namespace Quon
