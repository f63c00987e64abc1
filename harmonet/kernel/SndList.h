#pragma once

#include "harmonet/engine/Alloc.h"
#include "harmonet/instances/SndBase.h"
#include "harmonet/kernel/Prefetch.h"

namespace Quon
{

/// An intrusive list of sounds with a count: the kernel's lists. A sound is on one list at most and knows it.
///
/// The sorted lists have the least important sound at the head. What a sound is compared by changes between
/// sorts, so that the order is only as good as the last comparison; the list knows whether it still holds.
/// The lists do not own their sounds. Task thread only.
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
    /// Whether any of the sounds is music.
    bool HasMusic() const { return numMusic > 0; }
    bool Holds(const SndBase& sound) const { return sound.list == this; }

    /// These two take a sound that is on no list.
    void Append(SndBase& sound);
    /// In front of the first sound, from the head, that is not less important: first among equals. While the
    /// order holds, the place is looked for from where the last sound went in.
    void InsertSorted(SndBase& sound);
    void Remove(SndBase& sound);
    /// Takes the head out; null for an empty list.
    SndBase* TakeHead();

    /// Brings the sounds into another order, ascending by importance: calls `next` once for each and gets the
    /// sounds of the list in their new order.
    template<class Next>
    void Reorder(Next next)
    {
        IListNode* last = &head;
        lastWalk.resize(static_cast<std::size_t>(count));
        for (const SndBase*& known : lastWalk) {
            SndBase& sound = next();
            last->next = &sound;
            sound.previous = last;
            last = &sound;
            known = &sound;
        }
        last->next = &head;
        head.previous = last;
        isInOrder = true;
        // What is put in next is mostly one of the more important.
        lastInserted = last;
    }
    /// The importance of a sound has changed, so that the order may not hold any more.
    void ForgetOrder() { isInOrder = count < 2; }

    /// Calls `visit` for every sound, from the head. The list must not change meanwhile.
    template<class Visit>
    void ForEach(Visit visit) const
    {
        // The sounds lie all over the memory. Where they stood at the last walk is, but for a few, where they
        // stand now, and so tells what to fetch ahead; a sound that has gone since does no harm.
        std::size_t place = 0;
        for (IListNode* node = head.next; node != &head; node = node->next, ++place) {
            if (place + prefetchDistance < lastWalk.size())
                PrefetchLinks(lastWalk[place + prefetchDistance]);
            auto* sound = static_cast<SndBase*>(node);
            if (place < lastWalk.size())
                lastWalk[place] = sound;
            else
                lastWalk.push_back(sound);
            visit(*sound);
        }
        lastWalk.resize(place);
    }

private:
    SndBase* ToSound(IListNode* node) const { return node == &head ? nullptr : static_cast<SndBase*>(node); }
    IListNode* FindPlace(const SndBase& sound);
    void InsertBefore(IListNode& place, SndBase& sound);

    IListNode head;
    int count = 0;
    int numMusic = 0;
    bool isInOrder = true;
    IListNode* lastInserted; ///< Or the head, when there is none.
    mutable EngineVector<const SndBase*> lastWalk; ///< For fetching ahead only.
};

} // namespace Quon
