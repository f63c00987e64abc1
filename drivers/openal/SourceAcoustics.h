#pragma once

#include "drivers/openal/ReverbRecords.h"

#include <AL/al.h>

#include <cstdint>
#include <optional>

namespace Quon
{

class Acoustics;
class ReverbSlot;
class SndFXList;

/// The acoustic paths of one sound: its direct path, its path into the listener's room, on send 0, and into
/// its own room, on send 1. Owned by a channel and guarded by its output mutex; OpenAL calls need a
/// ContextScope.
///
/// The sound's own room is an OpenAL reverb like the listener's, and both are audible. The path into it
/// starts at the sound and is not filtered by the source properties, which apply to the listener's room.
///
/// The path into the listener's room is switched without a click: it is closed over one mixed block, and only
/// then opened into the other room.
class SourceAcoustics
{
public:
    explicit SourceAcoustics(Acoustics& driverAcoustics)
        : acoustics(driverAcoustics)
    {
    }

    /// Starts a sound on a source that does not play. Only a positional sound has source properties and,
    /// unless it refuses, a path into the listener's room.
    void Begin(ALuint newSource, bool isPositional, bool refusesRoom, const SndFXList& effects);

    /// Ends the sound. Its own room decays, or is cut off.
    void End(bool isCutOff);

    /// Applies all settings to another source, possibly on another device. 0 is none.
    void Rebind(ALuint newSource);

    /// Sets the source properties, each clamped to its range. Returns false and changes nothing if the sound
    /// has none.
    bool SetProperties(const FXEnvReverbSourceProperties* wanted);
    /// The applied properties; false if none have been set.
    bool GetProperties(FXEnvReverbSourceProperties* record) const;
    /// The sound's own room; false if it has none.
    bool GetOwnRoom(FXEnvReverb* record) const;

    /// Whether the sound is not yet sent into the listener's current room.
    bool IsOutdated() const { return isClosed || room != GetTarget(); }

    /// Follows a change of the listener's room. Call it once per round of the pumping thread while
    /// IsOutdated(), but not while settings are deferred.
    void Follow(bool isPlaying);

private:
    const ReverbSlot* GetTarget() const;
    void ApplyDirect();
    void ApplyRoomSend();

    Acoustics& acoustics;
    ALuint source = 0;
    bool positional = false;
    bool entersRoom = false;
    std::optional<FXEnvReverbSourceProperties> properties;
    const ReverbSlot* ownRoom = nullptr;
    const ReverbSlot* room = nullptr; ///< The room into which the sound is sent.
    bool isClosed = false; ///< The path into it is closed.
    std::int64_t closedSince = 0; ///< When it was closed, on the device's mix clock.
};

} // namespace Quon
