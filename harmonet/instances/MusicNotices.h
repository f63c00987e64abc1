#pragma once

#include "harmonet/engine/Alloc.h"
#include "harmonet/engine/PString.h"
#include "harmonet/instances/MusicObserver.h"
#include "harmonet/instances/ObserverSubject.h"

namespace Quon
{

/// What there is to tell of a piece of music.
enum class MusicNotice
{
    Begin,
    End,
    Abort,
    Loop,
    GivesWay
};

/// The observers of one `Music`, which owns this, and what they have yet to be told. Things are told once
/// nobody is in the middle of anything: when the last SndBase::MusicHold goes. Task thread only.
class MusicNotices final : public ObserverSubject<MusicObserver>, public Allocated
{
public:
    explicit MusicNotices(Music& newMusic);
    /// Drops what has not been told, and tells the observers OnMusicShutDown().
    ~MusicNotices();

    /// Without memory for it the notice is lost.
    void Post(MusicNotice kind, const PString& fileName, int remaining);
    /// The piece is taken to another place, which is no loop.
    void ForgetPosition() { lastPositionMs = 0; }
    /// Tells what there is to tell.
    void Deliver();
    /// The same for every `Music`. A call from inside a handler leaves it to the one that is under way.
    static void DeliverAll();
    /// Posts for each piece that has gone round its loop since the last call.
    static void NoteLoops();

private:
    struct Notice
    {
        MusicNotice kind;
        PString fileName;
        int remaining;
    };

    void Tell(const Notice& notice);
    void NoteLoop();

    Music& music;
    EngineVector<Notice> pending;
    unsigned long lastPositionMs = 0;
    MusicNotices* next; ///< Of all that exist.
    static inline MusicNotices* first = nullptr;
};

} // namespace Quon
