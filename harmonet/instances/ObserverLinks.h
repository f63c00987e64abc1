#pragma once

#include "harmonet/engine/ChunkRing.h"

namespace Quon
{

template<class Observer>
class ObserverSubject;

/// The subjects to which an observer has been added, so that it can be destroyed at any time. A member of the
/// observer; the copy of an observer starts without links.
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

    /// Removes the owning observer from every list. Needs the complete type ObserverSubject.
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
