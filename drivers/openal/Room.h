#pragma once

#include "drivers/openal/ReverbSlot.h"

#include <array>
#include <atomic>
#include <mutex>
#include <optional>

namespace Quon
{

/// The room that the listener is in. Owned by the Acoustics. Calls of OpenAL need a ContextScope.
///
/// A change of room does not click and cuts nothing off: the new room stands in a slot of its own, into which
/// the sounds go from then on, while the one that is left falls silent over a fifth of a second. A change
/// that comes before that is over waits for it; of several the last one counts. Where OpenAL has one slot
/// only, every change waits, and it is dry in between. Without a room nothing is computed.
class Room
{
public:
    /// Makes on a device what is there of the room. False if OpenAL has no slot left.
    bool Create(const EfxFunctions& functions);
    /// What has been set stays, for the next Create(). No source may be sent to the slots.
    void Destroy();

    /// The listener goes into a room, which has been held; nothing means into the open. `now` on the device's
    /// clock of GetTicksPerSecond().
    void Set(const std::optional<FXEnvReverb>& newRoom, std::int64_t now, std::int64_t ticksPerSecond);

    /// Lets time go on to `time`. Once a block or round.
    void Tick(std::int64_t time, std::int64_t ticksPerSecond);

    /// Whether a change is not over yet.
    bool IsChanging();

    /// The slot into which sounds are to go now, or null. It stays where it is. Any thread.
    const ReverbSlot* GetSlot() const { return current; }

private:
    void Leave(ReverbSlot& left, std::int64_t now, std::int64_t ticksPerSecond);
    void MoveOn(std::int64_t now, std::int64_t ticksPerSecond);
    ReverbSlot* FindEmpty();

    std::mutex mutex; ///< Guards all that follows, but for reading the pointer.
    std::array<ReverbSlot, 2> slots;
    bool isSingle = false; ///< The device has given one slot only.
    /// Null in the open. Publishes the slot's name, which changes only with the device.
    std::atomic<ReverbSlot*> current = nullptr;
    std::int64_t currentSince = 0; ///< The time at which it was set.
    std::optional<FXEnvReverb> wanted; ///< What has been set last,
    bool isPending = false; ///< and whether it is still to be done.
};

} // namespace Quon
