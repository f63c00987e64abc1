#pragma once

#include "harmonet/Export.h"
#include "harmonet/kernel/SoundState.h"

#include <chrono>
#include <cstdint>

namespace Quon
{

/// The notifications of a `SoundObserver`.
enum class SoundNotice : std::uint8_t
{
    Begin,
    Abort,
    End,
    BufferFree
};

/// One full update, when it has ended.
struct UpdateRecord
{
    std::uint32_t elapsedMs = 0; ///< Since the one before.
    std::chrono::nanoseconds cost{0}; ///< Wall clock, with the driver's part and what observers did.
    int numHeard = 0; ///< Sounds that hold a channel.
    int numVirtual = 0; ///< Sounds that run without one.
    int numWaiting = 0; ///< Sounds that have been started and have not had a turn yet.
    int maxAudible = 0; ///< The limit of audible sounds.
    bool hasListener = false; ///< Whether a Microphone is active.
    Vector3 listener{0.0F, 0.0F, 0.0F}; ///< Its place in the world.
};

/// Base class of what follows all that happens to sounds, such as the writer of a trace. Override what
/// matters; the functions here do nothing. SoundSystem::SetTrace() attaches it.
///
/// The functions are called on the task thread, out of the middle of other work: they may read
/// (SoundSystem::GetClockMs(), Sound::GetState() and other getters), but must not start, change or end
/// anything. Changes of state that a full update makes are reported when it has ended, after OnUpdate().
/// Several changes within one update are one report.
class HARMONET_API SoundTrace
{
public:
    SoundTrace() = default;
    SoundTrace(const SoundTrace&) = delete;
    SoundTrace& operator=(const SoundTrace&) = delete;
    /// Detaches itself.
    virtual ~SoundTrace();

    /// A sound was started, or ran already when the trace was attached. Comes before its other states; the
    /// notification of its begin may come before it.
    virtual void OnStart(const SoundState&) {}
    /// Its phase or its reason is another, or it has begun to fade out.
    virtual void OnChange(const SoundState&) {}
    /// A sound that was started has ended, for whatever reason: the last report of its id. It comes after the
    /// notification.
    virtual void OnEnd(const SoundState&) {}
    /// An observer's notification is about to run. It comes for groups without observers too.
    virtual void OnNotice(SoundNotice, int /*soundID*/, const PString& /*fileName*/) {}
    /// A full update has ended.
    virtual void OnUpdate(const UpdateRecord&) {}
};

} // namespace Quon
