#pragma once

#include "harmonet/Export.h"
#include "harmonet/instances/ObserverLinks.h"

namespace Quon
{

class PString;

/// Base class for game code that is notified about the sounds of a `Sound`. The default handlers do nothing;
/// override the ones you need.
///
/// The handlers are called on the task thread, from within other operations. They may start, stop, fade and
/// delete any other sounds, add and remove observers, and destroy the observer itself. They must not stop,
/// delete or fade out the sound of the notification (such a call does nothing) and must not destroy the
/// `Sound`. A call from a handler that updates or ends the sound system does nothing either.
class HARMONET_API SoundObserver
{
public:
    SoundObserver() = default;
    /// Copies `subject` alone. The copy is in no list, and `subject` is not cleared when that `Sound` is
    /// destroyed.
    SoundObserver(const SoundObserver& other);
    /// Copies `subject` alone. The observer stays in its lists.
    SoundObserver& operator=(const SoundObserver& other);

    /// Removes the observer from every `Sound` to which it was added. An observer can be destroyed at any
    /// time.
    virtual ~SoundObserver();
    /// The `Sound` is being destroyed; the observer is no longer linked to it.
    virtual void OnShutDown();
    /// The sound starts for the first time. Can be called before the game has the id, from within the call
    /// that starts the sound. For a sound that never started it is called at its end, right before
    /// OnSoundAbort(). The name is empty for a sound in memory. It is also called for the sources of a sound
    /// along a line, with ids that the game does not know and that get no other notification.
    virtual void OnSoundBegin(int soundID, const PString& fileName);
    /// The sound ends before its data, or never started. `remaining` is what was left in milliseconds, the
    /// queue included; -1 for a looping sound, or when the length was not yet known. If a handler called
    /// during an update starts a sound with StartImmediately, that sound can take the channel that the update
    /// has assigned to another sound, which then ends.
    virtual void OnSoundAbort(int soundID, const PString& fileName, int remaining);
    /// The sound has played to its end.
    virtual void OnSoundEnd(int soundID, const PString& fileName);
    /// The sound no longer uses the block of memory, which may be freed or reused. Can be called while the
    /// lock of the sound's channel is held; the handler may append more data to that sound.
    virtual void OnBufferFree(int soundID, void* buffer);

    /// The `Sound` to which this observer was last added. Null after it has been removed from any `Sound`, or
    /// after any `Sound` that it was added to has been destroyed, even while it is still in the list of
    /// another.
    ObserverSubject<SoundObserver>* subject = nullptr;

private:
    friend class ObserverSubject<SoundObserver>;
    friend class Sound;

    ObserverLinks<SoundObserver> links;
};

} // namespace Quon
