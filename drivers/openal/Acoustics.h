#pragma once

#include "drivers/openal/OwnRooms.h"
#include "drivers/openal/Room.h"
#include "drivers/openal/SourceFilters.h"

#include <atomic>

namespace Quon
{

class OutputDevice;

/// All that the driver does with OpenAL's effects extension: the listener's room, the rooms of single sounds,
/// and the filters on the ways there. Owned by the driver, used by its channels.
///
/// What has been set is kept here and not in OpenAL: on a device that is opened anew Create() makes all of it
/// again, and then each channel's SourceAcoustics has to be bound to its new source.
class Acoustics
{
public:
    explicit Acoustics(const OutputDevice& outputDevice)
        : device(outputDevice)
    {
    }

    /// To be called when a driver begins without a device: until there is one, all can be set that OpenAL has
    /// as a rule.
    void Expect();
    /// To be called when a device is open. False, and everything here does nothing, if it has no effects
    /// extension or no send. Needs a ContextScope.
    bool Create();
    /// Before the device closes, after all its sources are gone. All can be set as before, for the next
    /// device. Needs a ContextScope.
    void Destroy();

    /// How many reverbs a source can be sent to: 0 if nothing of this is to be had.
    int GetSendCount() const { return sendCount; }

    /// The listener's room. False, and nothing changes, without the extension or a record. Task thread.
    bool SetRoom(const FXEnvReverb* newRoom);
    void ResetRoom();

    /// Lets the rooms change with time. Needs a ContextScope; the thread that pumps.
    void Tick(std::int64_t time);

    /// Whether a room is being left or another one entered.
    bool IsChanging() { return sendCount > 0 && (room.IsChanging() || ownRooms.IsChanging()); }

    Room& GetRoom() { return room; }
    OwnRooms& GetOwnRooms() { return ownRooms; }
    SourceFilters& GetFilters() { return filters; }
    const OutputDevice& GetDevice() const { return device; }

private:
    const OutputDevice& device;
    /// Can change with the device. Publishes what Create() has made.
    std::atomic<int> sendCount = 0;
    SourceFilters filters;
    Room room;
    OwnRooms ownRooms;
};

} // namespace Quon
