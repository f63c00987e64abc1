#pragma once

#include "harmonet/Export.h"
#include "harmonet/instances/ObserverLinks.h"

namespace Quon
{

class PString;

/// Base class of game code that wants to hear what becomes of the sounds of a `Sound`. The handlers do
/// nothing here; override those that matter.
///
/// The handlers are called on the task thread, out of the middle of other work. They may start, stop, fade
/// and delete any other sounds, add and remove observers, and destroy the observer itself. They must not
/// stop, delete or fade out the sound that they are being told about (such a call does nothing) and must not
/// destroy the `Sound`. The sound system is neither updated nor ended from inside a handler: such a call does
/// nothing either.
class HARMONET_API SoundObserver
{
public:
    SoundObserver() = default;
    /// Copies `subject` alone. The copy is in no list, and `subject` is not cleared when that `Sound` is
    /// destroyed.
    SoundObserver(const SoundObserver& other);
    /// Copies `subject` alone. The observer stays in the lists in which it is.
    SoundObserver& operator=(const SoundObserver& other);

    /// Leaves every `Sound` to which it was added. An observer can be destroyed at any time.
    virtual ~SoundObserver();
    /// The `Sound` is being destroyed; the observer is no longer linked to it.
    virtual void OnShutDown();
    /// The sound starts for the first time. Can come before the game has the id, from inside the call that
    /// starts the sound. A sound that never started tells it at its end, right before OnSoundAbort(). The
    /// name is empty for a sound in memory. The sources of a sound along a line call it too, under ids that
    /// the game has not been given and that get no other notification.
    virtual void OnSoundBegin(int soundID, const PString& fileName);
    /// The sound ends with something left, or never started. `remaining` is what was left in milliseconds,
    /// the queue included; -1 for a looping sound, or when the length was not yet known. Called during an
    /// update, a handler that starts a sound with StartImmediately can take the channel that the update has
    /// given to another sound, which then ends.
    virtual void OnSoundAbort(int soundID, const PString& fileName, int remaining);
    /// The sound ends and nothing of it was left.
    virtual void OnSoundEnd(int soundID, const PString& fileName);
    /// The block of memory that was lent to a sound is no longer in use and may be freed or used again. Can
    /// come while the lock of the sound's channel is held; the handler may append more data to that sound.
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
