#include "tools/harmonet/Playback.h"

#include "harmonet/instances/Sound.h"
#include "tools/harmonet/FileWatch.h"
#include "tools/harmonet/GameClock.h"
#include "tools/harmonet/Interrupt.h"
#include "tools/harmonet/Output.h"
#include "tools/harmonet/PlayList.h"
#include "tools/harmonet/PlayReport.h"
#include "tools/harmonet/Rooms.h"
#include "tools/harmonet/TraceOutput.h"
#include "tools/harmonet/Walk.h"
#include "tools/harmonet/top/Screen.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <thread>

namespace Tool
{

namespace
{

// The distances of a positional sound file: full gain up to the minimum, no further attenuation beyond the
// maximum.
constexpr float minDistance = 1.0F;
constexpr float maxDistance = 500.0F;
constexpr float allAround = 360.0F; ///< Degrees. A cone of this angle has no effect.

bool IsPlaced(const PlayRequest& request, const PlayList::Item& item)
{
    return request.isWalking || !request.position.empty() || item.HasPlace();
}

Quon::Vector3 PlaceOf(const PlayRequest& request, const PlayList::Item& item)
{
    const std::vector<float>& at = request.position;
    return at.empty() ? item.GetPlace() : Quon::Vector3{at[0], at[1], at[2]};
}

int MakeSound(Quon::Sound& group, const PlayRequest& request, const PlayList::Item& item)
{
    if (!IsPlaced(request, item)) {
        return group.New2DSound(item.name, item.database);
    }
    const int id = group.New3DSound(item.name, item.database);
    if (!item.definition) {
        group.SetSoundCone(id, allAround, allAround, 1.0F);
        group.SetSoundMinMaxDistance(id, minDistance, maxDistance, false);
    }
    // Has no effect on a line, which has its own positions.
    group.SetSoundPosition(id, PlaceOf(request, item));
    return id;
}

void StartOrFail(
    Quon::Sound& group, const PlayRequest& request, const PlayList::Item& item, PlayReport& report)
{
    const int flags = request.isLooping || request.isWalking ? Quon::Sound::StartLooping : 0;
    // Start immediately, so that a rendered file begins with the sound. Sounds beyond the number of channels
    // compete in the next update.
    for (const int startFlag : {static_cast<int>(Quon::Sound::StartImmediately), 0}) {
        const int id = MakeSound(group, request, item);
        group.SetSoundPriority(id, request.priority);
        report.NameSound(id, item.shown);
        if (group.StartSound(id, flags | startFlag)) {
            return report.ExpectSound();
        }
        group.DeleteSound(id);
    }
    throw ToolError("'" + item.shown + "' cannot be played", ExitCode::BadInput);
}

long LimitMs(const PlayRequest& request)
{
    if (request.seconds > 0.0) {
        return std::lround(request.seconds * 1000.0);
    }
    return request.isWalking ? Walk::durationMs : std::numeric_limits<long>::max();
}

void CheckEnd(const PlayRequest& request, const PlayList& list)
{
    const auto isLoop = [&](const PlayList::Item& item) { return request.isLooping || item.IsLoop(); };
    const bool hasLoop = std::any_of(list.GetItems().begin(), list.GetItems().end(), isLoop);
    if (hasLoop && !request.host.renderPath.empty() && LimitMs(request) == std::numeric_limits<long>::max()) {
        throw ToolError("a loop does not end; rendering one needs --seconds", ExitCode::BadArguments);
    }
}

/// Returns a path past the centre of all sounds. At its ends they are barely audible.
Walk MakeWalk(const PlayRequest& request, const PlayList& list)
{
    constexpr float minSpan = 20.0F;
    Quon::Vector3 sum{0.0F, 0.0F, 0.0F};
    float span = minSpan;
    for (const PlayList::Item& item : list.GetItems()) {
        const Quon::Vector3 place = PlaceOf(request, item);
        sum = {sum.x + place.x, sum.y + place.y, sum.z + place.z};
        if (item.definition) {
            span = std::max(span, 4.0F * item.definition->GetMinDistance());
        }
    }
    const auto count = static_cast<float>(list.GetItems().size());
    return {{sum.x / count, sum.y / count, sum.z / count}, span};
}

/// Returns how long the room remains audible after the sounds have ended.
long TailMs(const PlayRequest& request)
{
    return request.room.empty() ? 0 : std::lround(GetRoom(request.room).decayTime * 1000.0F);
}

/// The objects that take part in one playback.
struct Session
{
    const PlayRequest& request;
    const PlayList& list;
    Host& host;
    PlayReport& report;
    FileWatch& watch;
    Screen* screen; ///< Null for none.
};

/// Returns false when the user quits.
bool ShowProgress(const Session& session, long playedMs)
{
    if (session.screen) {
        return session.screen->Update(
            static_cast<unsigned long>(playedMs), session.host.GetMaxAudible(), session.report);
    }
    session.report.ShowProgress(static_cast<unsigned long>(playedMs));
    return true;
}

/// Runs game frames until the sounds and the room have ended, the time is up, or the user ends it.
void RunFrames(const Session& session)
{
    const PlayRequest& request = session.request;
    GameClock clock(session.host.IsLive() || session.screen);
    const Walk walk = MakeWalk(request, session.list);
    const long limitMs = LimitMs(request);
    long playedMs = 0;
    long tailMs = TailMs(request);
    do {
        const int elapsedMs = clock.WaitForFrame(limitMs - playedMs);
        session.host.Update(elapsedMs);
        playedMs += elapsedMs;
        if (request.isWalking) {
            session.host.MoveListener(walk.GetPosition(playedMs));
        }
        if (!session.report.IsUnfinished()) {
            tailMs -= elapsedMs;
        }
    } while (ShowProgress(session, playedMs) && (session.report.IsUnfinished() || tailMs > 0) &&
        playedMs < limitMs && !IsInterrupted() && !(request.isWatching && session.watch.HasChanged()));
}

void PlaySounds(const Session& session)
{
    Quon::Sound group;
    group.AddObserver(&session.report);
    group.SetGain(session.request.gain);
    for (const PlayList::Item& item : session.list.GetItems()) {
        StartOrFail(group, session.request, item, session.report);
    }
    RunFrames(session);
}

void PlayToTheEnd(const PlayRequest& request, const PlayList& list, PlayReport& report, FileWatch& watch)
{
    Host::Settings settings = request.host;
    settings.inputs = list.GetFiles();
    Host host(settings);
    if (!request.room.empty() && !host.EnterRoom(GetRoom(request.room))) {
        PrintWarning("this output driver does not support rooms");
    }
    if (request.isWalking) {
        host.MoveListener(MakeWalk(request, list).GetPosition(0));
    }
    TraceOutput traces(request.tracePath, request.timelinePath);
    const auto screen = request.isOnScreen ? std::make_unique<Screen>() : nullptr;
    PlaySounds({request, list, host, report, watch, screen.get()});
    traces.Commit();
}

void PlayOnce(const PlayRequest& request, FileWatch& watch)
{
    const PlayList list(request.paths, request.root, request.isWatching);
    CheckEnd(request, list);
    watch = FileWatch(list.GetFiles());
    PlayReport report;
    PlayToTheEnd(request, list, report, watch);
    report.ShowEvents();
}

} // namespace

ExitCode Play(const PlayRequest& request)
{
    constexpr std::chrono::milliseconds pause(20);
    if (request.isOnScreen) {
        CheckScreen();
    }
    CatchInterrupt();
    for (;;) {
        FileWatch watch(request.paths);
        try {
            PlayOnce(request, watch);
        }
        catch (const ToolError& error) {
            // The user will correct the file and save it again.
            if (!request.isWatching || error.GetCode() != ExitCode::BadInput) {
                throw;
            }
            PrintError(error.what());
        }
        FlushOutput();
        while (request.isWatching && !IsInterrupted() && !watch.HasChanged()) {
            std::this_thread::sleep_for(pause);
        }
        if (!request.isWatching || IsInterrupted()) {
            return ExitCode::Done;
        }
    }
}

} // namespace Tool
