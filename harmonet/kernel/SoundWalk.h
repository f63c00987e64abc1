#pragma once

#include "harmonet/engine/Alloc.h"

#include <cstdint>

namespace Quon
{

class SndBase;
class SndKernel;
class SndList;

/// A sound and its id, by which one can tell later whether the sound still exists.
struct KnownSound
{
    SndBase* sound;
    int id;
};

/// Memory for walks, kept so that a steady state allocates nothing. Walks can be nested; each takes a buffer
/// and gives it back.
class WalkBuffers
{
public:
    /// An empty buffer.
    EngineVector<KnownSound> Take();
    void GiveBack(EngineVector<KnownSound>&& buffer);

private:
    EngineVector<EngineVector<KnownSound>> spare;
};

/// A walk over sounds that stays sound whatever happens on the way, when observers start, stop and delete
/// sounds.
///
/// It visits the sounds that were there when it began: each of them that still exists once and in order, none
/// that came later. A walk over a list passes over a sound that has left that list meanwhile.
///
/// A walk over a list goes along the list itself for as long as that does not change. Before it does, the
/// list has the walk take down the ids of what is still to come.
class SoundWalk
{
public:
    enum Direction
    {
        FromHead,
        FromTail
    };

    /// What a walk does about sounds that were started during the running update.
    enum Newcomers
    {
        PassOver, ///< They are for the next update.
        Visit
    };

    SoundWalk(SndKernel& newKernel, SndList& newList, Direction newDirection, Newcomers newNewcomers);
    /// Over these sounds of the id table, in a buffer of the kernel's. Newcomers are visited.
    SoundWalk(SndKernel& newKernel, EngineVector<KnownSound>&& newSounds);
    SoundWalk(const SoundWalk&) = delete;
    SoundWalk& operator=(const SoundWalk&) = delete;
    ~SoundWalk();

    /// The next sound, or null at the end.
    SndBase* Next();

private:
    friend class SndList;

    void TakeDown();
    SndBase* NextOfList();
    SndBase* NextTakenDown();
    SndBase* GetNeighbour(const SndBase& sound) const;
    void FetchAhead(const SndBase& sound) const;
    bool IsStillThere(const KnownSound& known) const;

    SndKernel& kernel;
    SndList* list; ///< Null for a walk over the table.
    Direction direction = FromHead;
    Newcomers newcomers;
    bool followsList;
    SndBase* cursor = nullptr; ///< While it follows the list: the next sound.
    SoundWalk* outerWalk = nullptr; ///< Meanwhile, the walk over the same list that this one is nested in.
    EngineVector<KnownSound> sounds; ///< Taken down.
    std::size_t place = 0;
    std::uint64_t numRemovedAtStart;
};

} // namespace Quon
