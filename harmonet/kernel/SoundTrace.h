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

/// A completed full update.
struct UpdateRecord
{
    std::uint32_t elapsedMs = 0; ///< Since the previous one.
    std::chrono::nanoseconds cost{0}; ///< Wall-clock time, including the driver and the observers.
    int numHeard = 0; ///< Sounds that hold a channel.
    int numVirtual = 0; ///< Sounds that run without one.
    int numWaiting = 0; ///< Sounds that have been started and have not had a turn yet.
    int maxAudible = 0; ///< The limit of audible sounds.
    bool hasListener = false; ///< Whether a Microphone is active.
    Vector3 listener{0.0F, 0.0F, 0.0F}; ///< World position.
};

/// Base class for code that follows all events of sounds, such as a trace writer. The default functions do
/// nothing; override the ones you need. SoundSystem::SetTrace() attaches it.
///
/// The functions are called on the task thread, from within other operations. They may call getters such as
/// SoundSystem::GetClockMs() and Sound::GetState(), but must not start, change or end anything. State changes
/// of a full update are reported at its end, after OnUpdate(). Several changes within one update are reported
/// once.
class HARMONET_API SoundTrace
{
public:
    SoundTrace() = default;
    SoundTrace(const SoundTrace&) = delete;
    SoundTrace& operator=(const SoundTrace&) = delete;
    /// Detaches the trace.
    virtual ~SoundTrace();

    /// A sound was started, or was already running when the trace was attached. Called before its other
    /// states are reported; the notification of its begin may precede it.
    virtual void OnStart(const SoundState&) {}
    /// The sound's phase or reason has changed, or it has begun to fade out.
    virtual void OnChange(const SoundState&) {}
    /// A started sound has ended, for whatever reason: the last report of its id. Called after the
    /// notification.
    virtual void OnEnd(const SoundState&) {}
    /// An observer notification is about to run. Also called for groups without observers.
    virtual void OnNotice(SoundNotice, int /*soundID*/, const PString& /*fileName*/) {}
    /// A full update has ended.
    virtual void OnUpdate(const UpdateRecord&) {}
};

} // namespace Quon
