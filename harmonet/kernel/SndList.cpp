#include "harmonet/kernel/SndList.h"

#include <array>
#include <cassert>

namespace Quon
{

namespace
{

// The sort works on chains linked through `next` alone, ended by null.

SndBase* NextInChain(SndBase* sound)
{
    return static_cast<SndBase*>(sound->next);
}

// Takes the longest ascending run off the front of `rest` and returns it as a chain.
SndBase* TakeRun(SndBase*& rest)
{
    SndBase* run = rest;
    SndBase* last = rest;
    SndBase* following = NextInChain(last);
    while (following && !(*following < *last)) {
        last = following;
        following = NextInChain(last);
    }
    last->next = nullptr;
    rest = following;
    return run;
}

// Of equals those of `earlier` come first.
SndBase* Merge(SndBase* earlier, SndBase* later)
{
    IListNode result;
    IListNode* last = &result;
    while (earlier && later) {
        SndBase*& smaller = *later < *earlier ? later : earlier;
        last->next = smaller;
        last = smaller;
        smaller = NextInChain(smaller);
    }
    last->next = earlier ? earlier : later;
    return static_cast<SndBase*>(result.next);
}

// Run lengths double from place to place, so this many places hold any list.
constexpr std::size_t numMergePlaces = 48;

} // namespace

SndList::SndList()
{
    head.next = head.previous = &head;
}

void SndList::Append(SndBase& sound)
{
    InsertBefore(head, sound);
}

void SndList::InsertSorted(SndBase& sound)
{
    IListNode* place = head.next;
    while (place != &head && *ToSound(place) < sound)
        place = place->next;
    InsertBefore(*place, sound);
}

void SndList::Remove(SndBase& sound)
{
    assert(sound.list == this);
    sound.previous->next = sound.next;
    sound.next->previous = sound.previous;
    sound.next = sound.previous = &sound;
    sound.list = nullptr;
    --count;
}

SndBase* SndList::TakeHead()
{
    SndBase* sound = GetHead();
    if (sound)
        Remove(*sound);
    return sound;
}

void SndList::Sort()
{
    if (count < 2)
        return;
    head.previous->next = nullptr;
    auto* rest = static_cast<SndBase*>(head.next);
    // Place n holds the merger of 2^n runs, all of them earlier in the list than what comes after.
    std::array<SndBase*, numMergePlaces> merged{};
    while (rest) {
        SndBase* run = TakeRun(rest);
        std::size_t place = 0;
        for (; merged[place]; ++place) {
            run = Merge(merged[place], run);
            merged[place] = nullptr;
        }
        merged[place] = run;
    }
    SndBase* sorted = nullptr;
    for (SndBase* chain : merged) {
        if (chain)
            sorted = sorted ? Merge(chain, sorted) : chain;
    }
    Relink(sorted);
}

// Restores the links that a chain lacks.
void SndList::Relink(SndBase* chain)
{
    IListNode* last = &head;
    for (SndBase* sound = chain; sound; sound = NextInChain(sound)) {
        last->next = sound;
        sound->previous = last;
        last = sound;
    }
    last->next = &head;
    head.previous = last;
}

void SndList::InsertBefore(IListNode& place, SndBase& sound)
{
    assert(!sound.list);
    sound.next = &place;
    sound.previous = place.previous;
    place.previous->next = &sound;
    place.previous = &sound;
    sound.list = this;
    ++count;
}

} // namespace Quon
