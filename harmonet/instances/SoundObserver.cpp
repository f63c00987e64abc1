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
    while (!groups.IsEmpty()) {
        ObserverSubject<SoundObserver>& group = **groups.GetBegin();
        Leave(group);
        group.RemoveObserver(this);
    }
}

void SoundObserver::Join(ObserverSubject<SoundObserver>& group)
{
    groups.Append(&group);
}

void SoundObserver::Leave(ObserverSubject<SoundObserver>& group)
{
    auto place = groups.GetBegin();
    while (place.IsValid() && *place != &group) {
        place.MoveOn();
    }
    if (place.IsValid()) {
        groups.Erase(place);
    }
}

void SoundObserver::OnShutDown() {}

void SoundObserver::OnSoundBegin(int, const PString&) {}

void SoundObserver::OnSoundAbort(int, const PString&, int) {}

void SoundObserver::OnSoundEnd(int, const PString&) {}

void SoundObserver::OnBufferFree(int, void*) {}

} // namespace Quon
