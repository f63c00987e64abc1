#pragma once

#include "drivers/openal/ReverbSlot.h"

#include <array>
#include <atomic>
#include <mutex>
#include <optional>

namespace Quon
{

/// The listener's room. Owned by the Acoustics. OpenAL calls need a ContextScope.
///
/// A change of room does not click and cuts nothing off: the new room has its own slot, into which the sounds
/// are sent from then on, while the old room fades out over a fifth of a second. A change that comes before
/// the end of the fade-out waits for it; of several, the last one is used. If OpenAL has only one slot, every
/// change waits, and there is no reverb in between. Without a room nothing is computed.
class Room
{
public:
    /// Creates the slots on a device and restores the room. Returns false if OpenAL has no slot left.
    bool Create(const EfxFunctions& functions);
    /// The settings are kept for the next Create(). No source may be sent to the slots.
    void Destroy();

    /// Sets the room, which must have been clamped; nullopt means no room. `now` is on the device's clock, in
    /// ticks of GetTicksPerSecond().
    void Set(const std::optional<FXEnvReverb>& newRoom, std::int64_t now, std::int64_t ticksPerSecond);

    /// Advances the change to `time`. Call it once per block or round.
    void Tick(std::int64_t time, std::int64_t ticksPerSecond);

    /// Whether a change is in progress.
    bool IsChanging();

    /// The slot into which sounds are sent now, or null. Its address does not change. Any thread.
    const ReverbSlot* GetSlot() const { return current; }

private:
    void Leave(ReverbSlot& left, std::int64_t now, std::int64_t ticksPerSecond);
    void MoveOn(std::int64_t now, std::int64_t ticksPerSecond);
    ReverbSlot* FindEmpty();

    std::mutex mutex; ///< Guards all members below; `current` may be read without it.
    std::array<ReverbSlot, 2> slots;
    bool isSingle = false; ///< The device has only one slot.
    /// Null without a room. Publishes the slot's name, which changes only with the device.
    std::atomic<ReverbSlot*> current = nullptr;
    std::int64_t currentSince = 0; ///< The time at which it was set.
    std::optional<FXEnvReverb> wanted; ///< The room that was set last.
    bool isPending = false; ///< Whether it has not been applied yet.
};

} // namespace Quon
