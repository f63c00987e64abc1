#include "harmonet/instances/MusicNotices.h"

#include "harmonet/instances/Music.h"
#include "harmonet/instances/SndBase.h"
#include "harmonet/kernel/SndKernel.h"

#include <new>
#include <utility>

namespace Quon
{

namespace
{

int holdDepth = 0;
bool isDelivering = false;

// Prevents the kernel from being updated and from ending.
class BusyScope
{
public:
    BusyScope()
        : kernel(theKernel)
    {
        if (kernel) {
            kernel->BeginNotice();
        }
    }
    ~BusyScope()
    {
        if (kernel) {
            kernel->EndNotice();
        }
    }
    BusyScope(const BusyScope&) = delete;
    BusyScope& operator=(const BusyScope&) = delete;

private:
    SndKernel* const kernel;
};

} // namespace

SndBase::MusicHold::MusicHold()
{
    ++holdDepth;
}

SndBase::MusicHold::~MusicHold()
{
    if (--holdDepth == 0) {
        MusicNotices::DeliverAll();
    }
}

void SndBase::NoteMusicLoops()
{
    MusicNotices::NoteLoops();
}

MusicNotices::MusicNotices(Music& newMusic)
    : music(newMusic)
    , next(first)
{
    first = this;
}

MusicNotices::~MusicNotices()
{
    MusicNotices** link = &first;
    while (*link != this) {
        link = &(*link)->next;
    }
    *link = next;
    const BusyScope busy;
    Notify([this](MusicObserver& observer) {
        observer.links.Leave(*this);
        observer.OnMusicShutDown(music);
    });
}

void MusicNotices::Post(MusicNotice kind, const PString& fileName, int remaining)
{
    if (kind == MusicNotice::Begin) {
        ForgetPosition();
    }
    try {
        pending.push_back({kind, fileName, remaining});
    }
    catch (const std::bad_alloc&) {
        // May be called from a destructor.
    }
}

void MusicNotices::Deliver()
{
    while (!pending.empty()) {
        const Notice notice = pending.front();
        pending.erase(pending.begin());
        Tell(notice);
    }
}

void MusicNotices::DeliverAll()
{
    if (std::exchange(isDelivering, true)) {
        return;
    }
    // Restart from the beginning each time: a handler can create and destroy handles.
    for (MusicNotices* notices = first; notices;) {
        const bool hasTold = !notices->pending.empty();
        notices->Deliver();
        notices = hasTold ? first : notices->next;
    }
    isDelivering = false;
}

void MusicNotices::Tell(const Notice& notice)
{
    const BusyScope busy;
    Notify([&](MusicObserver& observer) {
        switch (notice.kind) {
        case MusicNotice::Begin:
            return observer.OnMusicBegin(music, notice.fileName);
        case MusicNotice::End:
            return observer.OnMusicEnd(music, notice.fileName);
        case MusicNotice::Abort:
            return observer.OnMusicAbort(music, notice.fileName, notice.remaining);
        case MusicNotice::Loop:
            return observer.OnMusicLoop(music, notice.fileName);
        case MusicNotice::GivesWay:
            return observer.OnMusicGivesWay(music, notice.fileName);
        }
    });
}

void MusicNotices::NoteLoops()
{
    for (MusicNotices* notices = first; notices; notices = notices->next) {
        notices->NoteLoop();
    }
}

void MusicNotices::NoteLoop()
{
    // Rounding can move the position of a sound back when it loses its channel or gets one again.
    constexpr unsigned long toleranceMs = 5;
    const SndBase* piece = music.FindLive();
    if (!piece || !piece->IsLooping() || !piece->IsPlaying() || piece->GetParentMusic() != &music) {
        ForgetPosition();
        return;
    }
    const unsigned long positionMs = piece->GetCurrentLength();
    if (positionMs + toleranceMs < std::exchange(lastPositionMs, positionMs)) {
        Post(MusicNotice::Loop, piece->GetFileName(), 0);
    }
}

} // namespace Quon
