#pragma once

#include "harmonet/Export.h"
#include "harmonet/instances/ObserverLinks.h"

namespace Quon
{

class Music;
class PString;

/// Base class for game code that is notified about pieces of music: see Music::AddObserver(). The default
/// handlers do nothing; override the ones you need.
///
/// Each piece that begins is reported once with OnMusicBegin() and once with one of OnMusicEnd(),
/// OnMusicAbort() and OnMusicGivesWay(). A piece that never begins, such as one that is stopped in a pause
/// before it was audible, is not reported at all. `music` is the handle that started the piece.
///
/// The handlers are called on the task thread, at the end of the `Music` or SoundSystem operation that is the
/// cause, or after the full update in which the event occurred. No operation is in progress then, so a
/// handler may start the next piece with the same handle, cross-fade, stop, add and remove observers, and
/// destroy the observer itself. The resulting notifications are delivered after the handler has returned. It
/// must not destroy `music`. A call from a handler that updates or ends the sound system does nothing.
class HARMONET_API MusicObserver
{
public:
    MusicObserver() = default;
    /// A copy is in no list, and assignment keeps the observer in its lists.
    MusicObserver(const MusicObserver&) {}
    MusicObserver& operator=(const MusicObserver&) { return *this; }

    /// Removes the observer from every `Music` to which it was added. An observer can be destroyed at any
    /// time.
    virtual ~MusicObserver();
    /// The piece begins, possibly as a virtual voice.
    virtual void OnMusicBegin(Music& music, const PString& fileName);
    /// The piece has played to its end, or has been faded out. A virtual voice ends up to half a second
    /// early.
    virtual void OnMusicEnd(Music& music, const PString& fileName);
    /// The piece has been stopped, or it has lost its channel and could not continue. `remaining` is what was
    /// left in milliseconds; -1 for a looping piece.
    virtual void OnMusicAbort(Music& music, const PString& fileName, int remaining);
    /// The piece has returned to the start of its loop. Detected in a full update and reported once then, so
    /// a loop shorter than two updates can be missed.
    virtual void OnMusicLoop(Music& music, const PString& fileName);
    /// Another piece has been requested with the handle, in a cross-fade or after a fade-out, while this one
    /// fades out. Followed by OnMusicBegin() for the other one if it could be started.
    virtual void OnMusicGivesWay(Music& music, const PString& fileName);
    /// `music` is being destroyed; the observer is no longer linked to it.
    virtual void OnMusicShutDown(Music& music);

private:
    template<class Observer>
    friend class ObserverSubject;
    friend class MusicNotices;

    ObserverLinks<MusicObserver> links;
};

} // namespace Quon
