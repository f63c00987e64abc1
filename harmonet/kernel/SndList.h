#pragma once

#include "harmonet/instances/SndBase.h"

namespace Quon
{

/// An intrusive list of sounds with a count: the kernel's lists. A sound is on one list at most and knows it.
///
/// The lists do not own their sounds. The sorted lists have the least important sound at the head. Task
/// thread.
class SndList
{
public:
    SndList();
    SndList(const SndList&) = delete;
    SndList& operator=(const SndList&) = delete;

    bool IsEmpty() const { return count == 0; }
    int GetCount() const { return count; }
    /// Null for an empty list; likewise GetTail().
    SndBase* GetHead() const { return ToSound(head.next); }
    SndBase* GetTail() const { return ToSound(head.previous); }
    /// The neighbour towards the tail, or null; likewise GetPrevious() towards the head.
    SndBase* GetNext(const SndBase& sound) const { return ToSound(sound.next); }
    SndBase* GetPrevious(const SndBase& sound) const { return ToSound(sound.previous); }
    bool Holds(const SndBase& sound) const { return sound.list == this; }

    /// These take a sound that is on no list.
    void Append(SndBase& sound);
    /// In front of the first sound, from the head, that is not less important: first among equals.
    void InsertSorted(SndBase& sound);
    void Remove(SndBase& sound);
    /// Takes the head out; null for an empty list.
    SndBase* TakeHead();
    /// Sorts by importance, ascending; sounds that compare equal keep their order. Costs one walk when the
    /// list is in order already.
    void Sort();

private:
    SndBase* ToSound(IListNode* node) const { return node == &head ? nullptr : static_cast<SndBase*>(node); }
    void InsertBefore(IListNode& place, SndBase& sound);
    void Relink(SndBase* chain);

    IListNode head;
    int count = 0;
};

} // namespace Quon
