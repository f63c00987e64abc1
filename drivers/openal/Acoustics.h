#pragma once

#include "drivers/openal/OwnRooms.h"
#include "drivers/openal/Room.h"
#include "drivers/openal/SourceFilters.h"

#include <atomic>

namespace Quon
{

class OutputDevice;

/// The driver's use of OpenAL's effects extension: the listener's room, the rooms of single sounds, and the
/// filters on the paths into them. Owned by the driver, used by its channels.
///
/// The settings are stored here and not in OpenAL: on a newly opened device Create() restores all of them,
/// and then each channel's SourceAcoustics must be bound to its new source.
class Acoustics
{
public:
    explicit Acoustics(const OutputDevice& outputDevice)
        : device(outputDevice)
    {
    }

    /// Call it when a driver starts without a device: until there is one, everything that OpenAL normally
    /// supports can be set.
    void Expect();
    /// Call it when a device is open. If the device has no effects extension or no send, it returns false and
    /// everything here does nothing. Needs a ContextScope.
    bool Create();
    /// Call it before the device closes, after all its sources have been deleted. Settings can still be made,
    /// for the next device. Needs a ContextScope.
    void Destroy();

    /// The number of reverbs that a source can be sent to; 0 if effects are not available.
    int GetSendCount() const { return sendCount; }

    /// Sets the listener's room. Returns false and changes nothing without the extension or a record. Task
    /// thread.
    bool SetRoom(const FXEnvReverb* newRoom);
    void ResetRoom();

    /// Advances the changes of rooms to `time`. Needs a ContextScope; pumping thread.
    void Tick(std::int64_t time);

    /// Whether a change of rooms is in progress.
    bool IsChanging() { return sendCount > 0 && (room.IsChanging() || ownRooms.IsChanging()); }

    Room& GetRoom() { return room; }
    OwnRooms& GetOwnRooms() { return ownRooms; }
    SourceFilters& GetFilters() { return filters; }
    const OutputDevice& GetDevice() const { return device; }

private:
    const OutputDevice& device;
    /// Can change with the device. Publishes the objects that Create() has created.
    std::atomic<int> sendCount = 0;
    SourceFilters filters;
    Room room;
    OwnRooms ownRooms;
};

} // namespace Quon
