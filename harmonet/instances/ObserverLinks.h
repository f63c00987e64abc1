#pragma once

#include "harmonet/engine/ChunkRing.h"

namespace Quon
{

template<class Observer>
class ObserverSubject;

/// In whose lists an observer counts as added, so that it can be destroyed at any time. A member of the
/// observer; a copy of that starts without any.
template<class Observer>
class ObserverLinks
{
public:
    ObserverLinks() = default;
    ObserverLinks(const ObserverLinks&) = delete;
    ObserverLinks& operator=(const ObserverLinks&) = delete;

    /// The observer has been added to that list.
    void Join(ObserverSubject<Observer>& subject) { subjects.Append(&subject); }

    /// It has been removed from that list.
    void Leave(ObserverSubject<Observer>& subject)
    {
        auto place = subjects.GetBegin();
        while (place.IsValid() && *place != &subject) {
            place.MoveOn();
        }
        if (place.IsValid()) {
            subjects.Erase(place);
        }
    }

    /// Takes the observer whose member this is out of every list. Needs the complete ObserverSubject.
    void LeaveAll(Observer& observer)
    {
        while (!subjects.IsEmpty()) {
            ObserverSubject<Observer>& subject = **subjects.GetBegin();
            Leave(subject);
            subject.RemoveObserver(&observer);
        }
    }

private:
    static constexpr int subjectsPerChunk = 4;

    ChunkRing<ObserverSubject<Observer>*, subjectsPerChunk> subjects;
};

} // namespace Quon
