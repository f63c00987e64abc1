#pragma once

#include "harmonet/engine/ChunkRing.h"

namespace Quon
{

/// A list of observers that stays sound when an observer adds or removes observers, or destroys itself, while
/// a notification is running.
///
/// While a notification runs nothing leaves the list: a removal only marks the entry, and the entry goes when
/// the outermost notification has finished. New entries are appended and move no other, so that an observer
/// that is added during a notification receives it too. Observers are called in the order of adding.
template<class Observer>
class ObserverSubject
{
public:
    ObserverSubject() = default;
    ObserverSubject(const ObserverSubject&) = delete;
    ObserverSubject& operator=(const ObserverSubject&) = delete;

    /// An observer is in the list once, however often it is added. The list does not own it; an observer that
    /// is destroyed leaves by itself. Null does nothing.
    virtual void AddObserver(Observer* observer)
    {
        if (!observer) {
            return;
        }
        if (!Find(observer)) {
            entries.Append({false, observer});
        }
        Entry& entry = *Find(observer);
        if (entry.active) {
            return;
        }
        // Active last: if memory runs out, the list holds nothing that it would call.
        observer->links.Join(*this);
        entry.active = true;
    }

    /// From here on the observer gets no call, also of a notification that is under way. Null does nothing.
    virtual void RemoveObserver(Observer* observer)
    {
        Entry* entry = Find(observer);
        if (!entry) {
            return;
        }
        entry->active = false;
        observer->links.Leave(*this);
        if (notifyDepth == 0) {
            Purge();
        }
    }

    /// Whether the observer has been added.
    virtual bool HasObserver(const Observer* observer) const
    {
        const Entry* entry = Find(observer);
        return entry && entry->active;
    }

protected:
    ~ObserverSubject() = default;

    /// Calls `tell` for each observer that counts as added, those that are added meanwhile included.
    template<class Tell>
    void Notify(Tell tell)
    {
        ++notifyDepth;
        for (auto place = entries.GetBegin(); place.IsValid(); place.MoveOn()) {
            if (place->active) {
                tell(*place->observer);
            }
        }
        if (--notifyDepth == 0) {
            Purge();
        }
    }

private:
    struct Entry
    {
        bool active;
        Observer* observer;
    };
    static constexpr int entriesPerChunk = 4;

    Entry* Find(const Observer* observer) { return const_cast<Entry*>(std::as_const(*this).Find(observer)); }

    const Entry* Find(const Observer* observer) const
    {
        for (auto place = entries.GetBegin(); place.IsValid(); place.MoveOn()) {
            if (place->observer == observer) {
                return &*place;
            }
        }
        return nullptr;
    }

    void Purge()
    {
        for (auto place = entries.GetBegin(); place.IsValid();) {
            if (place->active) {
                place.MoveOn();
            }
            else {
                entries.Erase(place);
            }
        }
    }

    ChunkRing<Entry, entriesPerChunk> entries;
    int notifyDepth = 0;
};

} // namespace Quon
