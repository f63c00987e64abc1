#pragma once

#include "harmonet/engine/Alloc.h"
#include "harmonet/engine/PString.h"
#include "harmonet/instances/MusicObserver.h"
#include "harmonet/instances/ObserverSubject.h"

namespace Quon
{

/// The notifications of a piece of music.
enum class MusicNotice
{
    Begin,
    End,
    Abort,
    Loop,
    GivesWay
};

/// The observers of one `Music`, which owns this, and their pending notifications. These are delivered when
/// no operation is in progress: when the last SndBase::MusicHold is destroyed. Task thread only.
class MusicNotices final : public ObserverSubject<MusicObserver>, public Allocated
{
public:
    explicit MusicNotices(Music& newMusic);
    /// Drops pending notifications and calls the observers' OnMusicShutDown().
    ~MusicNotices();

    /// Adds a notification; it is dropped if memory runs out.
    void Post(MusicNotice kind, const PString& fileName, int remaining);
    /// Call it when the piece is moved to another position, so that this is not taken for a loop.
    void ForgetPosition() { lastPositionMs = 0; }
    /// Delivers the pending notifications.
    void Deliver();
    /// The same for every `Music`. A call from a handler leaves the delivery to the running one.
    static void DeliverAll();
    /// Posts a notification for each piece that has restarted its loop since the last call.
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
    MusicNotices* next; ///< Next in the list of all existing objects.
    static inline MusicNotices* first = nullptr;
};

} // namespace Quon
