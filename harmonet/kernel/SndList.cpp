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

void SndList::InsertBefore(IListNode& place, SndBase& sound)
{
    assert(!sound.list);
    sound.LinkBefore(place);
    sound.list = this;
    ++count;
    numMusic += sound.IsMusic() ? 1 : 0;
}

} // namespace Quon
