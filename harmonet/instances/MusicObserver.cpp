#include "harmonet/instances/MusicObserver.h"

#include "harmonet/instances/ObserverSubject.h"

namespace Quon
{

MusicObserver::~MusicObserver()
{
    links.LeaveAll(*this);
}

void MusicObserver::OnMusicBegin(Music&, const PString&) {}

void MusicObserver::OnMusicEnd(Music&, const PString&) {}

void MusicObserver::OnMusicAbort(Music&, const PString&, int) {}

void MusicObserver::OnMusicLoop(Music&, const PString&) {}

void MusicObserver::OnMusicGivesWay(Music&, const PString&) {}

void MusicObserver::OnMusicShutDown(Music&) {}

} // namespace Quon
