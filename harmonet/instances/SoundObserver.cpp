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

// Not through `subject`, which refers to one group at most and may be dangling in a copy.
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
