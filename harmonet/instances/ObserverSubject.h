#pragma once

#include "harmonet/engine/ChunkRing.h"

namespace Quon
{

/// A list of observers that stays valid when an observer adds or removes observers, or destroys itself,
/// during a notification.
///
/// No entry is erased during a notification: a removal only marks its entry, which is erased after the
/// outermost notification. New entries are appended without moving others, so an observer that is added
/// during a notification receives it too. Observers are called in the order in which they were added.
template<class Observer>
class ObserverSubject
{
public:
    ObserverSubject() = default;
    ObserverSubject(const ObserverSubject&) = delete;
    ObserverSubject& operator=(const ObserverSubject&) = delete;

    /// Adding an observer twice has no further effect. The list does not own its observers; an observer
    /// removes itself when it is destroyed. Null is ignored.
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
        // Set active last: if memory runs out, the list has no entry that would be called.
        observer->links.Join(*this);
        entry.active = true;
    }

    /// The observer receives no further calls, not even from a notification that is already running. Null is
    /// ignored.
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

    /// Calls `notify` for each active observer, including observers added during the notification.
    template<class Call>
    void Notify(Call notify)
    {
        ++notifyDepth;
        for (auto place = entries.GetBegin(); place.IsValid(); place.MoveOn()) {
            if (place->active) {
                notify(*place->observer);
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
