#include "harmonet/instances/SoundObserver.h"

#include "harmonet/instances/ObserverSubject.h"

namespace Quon
{

SoundObserver::~SoundObserver()
{
    if (subject)
        subject->RemoveObserver(this);
}

void SoundObserver::OnShutDown() {}

void SoundObserver::OnSoundBegin(int, const PString&) {}

void SoundObserver::OnSoundAbort(int, const PString&, int) {}

void SoundObserver::OnSoundEnd(int, const PString&) {}

void SoundObserver::OnBufferFree(int, void*) {}

} // namespace Quon
