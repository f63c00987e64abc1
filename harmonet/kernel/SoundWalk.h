#pragma once

#include "harmonet/engine/Alloc.h"

namespace Quon
{

class SndBase;
class SndKernel;
class SndList;

/// Memory for the ids of walks, kept so that a steady state allocates nothing. Walks can be nested; each
/// takes a buffer and gives it back.
class IdBuffers
{
public:
    EngineVector<int> Take();
    void GiveBack(EngineVector<int>&& buffer);

private:
    EngineVector<EngineVector<int>> spare;
};

/// A walk over sounds that stays sound whatever happens on the way, when observers start, stop and delete
/// sounds.
///
/// It goes by the ids of the sounds that were there when it began: each of them that still exists is visited
/// once and in order, none that came later is. A walk over a list passes over a sound that has left that list
/// meanwhile; any walk passes over what was started during the running update.
class SoundWalk
{
public:
    enum Direction
    {
        FromHead,
        FromTail
    };

    SoundWalk(SndKernel& newKernel, const SndList& newList, Direction direction = FromHead);
    /// Over the sounds with these ids, which come from the id table; see IdBuffers::Take().
    SoundWalk(SndKernel& newKernel, EngineVector<int>&& newIds);
    SoundWalk(const SoundWalk&) = delete;
    SoundWalk& operator=(const SoundWalk&) = delete;
    ~SoundWalk();

    /// The next sound, or null at the end.
    SndBase* Next();

private:
    SndKernel& kernel;
    const SndList* list;
    EngineVector<int> ids;
    std::size_t place = 0;
};

} // namespace Quon
