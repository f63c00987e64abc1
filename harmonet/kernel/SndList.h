#pragma once

#include "harmonet/engine/Alloc.h"
#include "harmonet/instances/SndBase.h"
#include "harmonet/kernel/Prefetch.h"

#include <array>

namespace Quon
{

class SoundWalk;

/// An intrusive list of sounds with a count: the kernel's lists. A sound is on one list at most and knows it.
///
/// The sorted lists have the least important sound at the head. What a sound is compared by changes between
/// sorts, so that the order is only as good as the last comparison; the list knows whether it still holds.
/// The lists do not own their sounds. Task thread only.
class SndList
{
public:
    SndList() = default;
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
    /// order holds, the place is found without a walk along the list, or nearly so.
    void InsertSorted(SndBase& sound);
    void Remove(SndBase& sound);
    /// Takes the head out; null for an empty list.
    SndBase* TakeHead();

    /// Brings the sounds into another order, ascending by importance: calls `next` once for each and gets the
    /// sounds of the list in their new order.
    template<class Next>
    void Reorder(Next next)
    {
        TellWalks();
        IListNode* last = &head;
        known.resize(static_cast<std::size_t>(count));
        numGone = 0;
        for (std::size_t place = 0; place < known.size(); ++place) {
            SndBase& sound = next();
            last->next = &sound;
            sound.previous = last;
            last = &sound;
            MakeKnown(sound, place);
        }
        last->next = &head;
        head.previous = last;
        isInOrder = true;
    }
    /// The importance of a sound has changed, so that the order may not hold any more.
    void ForgetOrder() { isInOrder = count < 2; }

    /// Calls `visit` for every sound, from the head. The list must not change meanwhile.
    template<class Visit>
    void ForEach(Visit visit) const
    {
        for (SndBase* sound = GetHead(); sound; sound = GetNext(*sound)) {
            PrefetchLine(GetKnownNear(*sound, prefetchDistance));
            visit(*sound);
        }
    }

    /// Takes down where the sounds stand, if that is not known of most of them: the sounds lie all over the
    /// memory, and what is known tells a walk what to fetch ahead.
    void Learn()
    {
        const std::size_t numKnown = known.size() - numGone;
        if (4 * (static_cast<std::size_t>(count) - numKnown) > static_cast<std::size_t>(count))
            LearnAll();
    }

    /// The sound that stood so many places towards the tail of this one when the places were last taken down;
    /// null if that is not known or the sound has left the list.
    const SndBase* GetKnownNear(const SndBase& sound, int distance) const
    {
        const std::size_t near = sound.knownPlace + static_cast<std::size_t>(distance);
        return near < known.size() ? known[near] : nullptr;
    }

    /// A walk that follows this list has to be told before the list changes. The walk takes itself out with
    /// the second, if it has not been told meanwhile; nested ones do so in turn.
    void AddWalk(SoundWalk& walk);
    void RemoveWalk(SoundWalk& walk);

private:
    SndBase* ToSound(IListNode* node) const { return node == &head ? nullptr : static_cast<SndBase*>(node); }
    void LearnAll();
    void MakeKnown(SndBase& sound, std::size_t place)
    {
        known[place] = &sound;
        sound.knownPlace = static_cast<std::uint32_t>(place);
    }
    IListNode* FindPlace(const SndBase& sound);
    IListNode* FindNear(const SndBase& sound);
    SndBase* FindKnown(const SndBase& sound);
    void InsertBefore(IListNode& place, SndBase& sound);
    void Forget(const SndBase& sound);
    void TellWalks();

    IListNode head;
    int count = 0;
    int numMusic = 0;
    bool isInOrder = true;
    std::array<SndBase*, 8> fingers{}; ///< Where sounds went in lately; null where there is none.
    std::size_t nextFinger = 0;

    SoundWalk* innermostWalk = nullptr; ///< Of those that follow this list.

    /// The sounds in their order, as Reorder() or Learn() left them, with null for those that have gone
    /// since. Those that have come since are not among them.
    EngineVector<SndBase*> known;
    std::size_t numGone = 0;
};

} // namespace Quon
