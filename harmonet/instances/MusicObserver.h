#pragma once

#include "harmonet/Export.h"
#include "harmonet/instances/ObserverLinks.h"

namespace Quon
{

class Music;
class PString;

/// Base class of game code that wants to hear what becomes of pieces of music: see Music::AddObserver(). The
/// handlers do nothing here; override those that matter.
///
/// Each piece that begins is told of once with OnMusicBegin() and once with one of OnMusicEnd(),
/// OnMusicAbort() and OnMusicGivesWay(). A piece that never begins, such as one that is stopped in a pause
/// before it was heard, is not told of at all. `music` is the handle that started the piece.
///
/// The handlers are called on the task thread: at the end of the operation of `Music` or SoundSystem that is
/// the cause, or after the full update in which it happened. All is over by then, so a handler may do what it
/// likes: start the next piece with the same handle, cross-fade, stop, add and remove observers, destroy the
/// observer itself. What this gives cause to tell follows when the handler has returned. It must not destroy
/// `music`. The sound system is neither updated nor ended from inside a handler: such a call does nothing.
class HARMONET_API MusicObserver
{
public:
    MusicObserver() = default;
    /// The copy is in no list, and an observer stays in the lists in which it is.
    MusicObserver(const MusicObserver&) {}
    MusicObserver& operator=(const MusicObserver&) { return *this; }

    /// Leaves every `Music` to which it was added. An observer can be destroyed at any time.
    virtual ~MusicObserver();
    /// The piece begins, be it as a virtual voice.
    virtual void OnMusicBegin(Music& music, const PString& fileName);
    /// The piece has run out, or it has been faded out. One that runs out as a virtual voice does so up to
    /// half a second early.
    virtual void OnMusicEnd(Music& music, const PString& fileName);
    /// The piece has been stopped, or it lost its channel and could not go on. `remaining` is what was left
    /// in milliseconds; -1 for a looping piece.
    virtual void OnMusicAbort(Music& music, const PString& fileName, int remaining);
    /// The piece has gone back to the start of its loop. Noticed at a full update, and told of once then, so
    /// a loop that is shorter than two updates can be missed.
    virtual void OnMusicLoop(Music& music, const PString& fileName);
    /// Another piece has been asked for with the handle, in a cross-fade or after a fade-out: this one falls
    /// silent meanwhile. Followed by OnMusicBegin() for the other one, if that could be had.
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
