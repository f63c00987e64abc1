#include "harmonet/instances/SoundObserver.h"

#include "harmonet/instances/ObserverSubject.h"

namespace Quon
{

SoundObserver::SoundObserver(const SoundObserver& other)
    : subject(other.subject)
{
}

SoundObserver& SoundObserver::operator=(const SoundObserver& other)
{
    subject = other.subject;
    return *this;
}

// Not through `subject`, which names one group at most and, in a copy, perhaps one that is gone.
SoundObserver::~SoundObserver()
{
    links.LeaveAll(*this);
}

void SoundObserver::OnShutDown() {}

void SoundObserver::OnSoundBegin(int, const PString&) {}

void SoundObserver::OnSoundAbort(int, const PString&, int) {}

void SoundObserver::OnSoundEnd(int, const PString&) {}

void SoundObserver::OnBufferFree(int, void*) {}

} // namespace Quon
