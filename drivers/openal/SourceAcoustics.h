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

/// How one sound is heard through the rooms: its direct path, its way into the listener's room, on send 0,
/// and into a room of its own, on send 1. Owned by a channel, whose lock for its output it is under; calls of
/// OpenAL need a ContextScope.
///
/// The sound's own room is a reverb of OpenAL like the listener's, and both are heard: the way into it starts
/// at the sound and does not pass through the source properties, which tell of the listener's room.
///
/// The way into the listener's room is changed over without a click: it is closed over one block that is
/// mixed, and only then opened into the other room.
class SourceAcoustics
{
public:
    explicit SourceAcoustics(Acoustics& driverAcoustics)
        : acoustics(driverAcoustics)
    {
    }

    /// Begins a sound, on a source that does not play. Only one that is `positional` has source properties
    /// and, unless the sound refuses, a way into the listener's room.
    void Begin(ALuint newSource, bool isPositional, bool refusesRoom, const SndFXList& effects);

    /// The sound is over. Its own room rings out, or is cut off.
    void End(bool isCutOff);

    /// The source is another one, on another device perhaps: sets all of it there. 0 is none.
    void Rebind(ALuint newSource);

    /// Sets the source properties, each held to its range. False, and nothing changes, where there are none.
    bool SetProperties(const FXEnvReverbSourceProperties* wanted);
    /// Those that are applied; false if none have been set.
    bool GetProperties(FXEnvReverbSourceProperties* record) const;
    /// The sound's own room; false if it has none.
    bool GetOwnRoom(FXEnvReverb* record) const;

    /// Whether the listener's room is another one than the sound goes into.
    bool IsBehind() const { return isClosed || room != GetTarget(); }

    /// Goes along with a change of the listener's room. Once a round of the thread that pumps while the sound
    /// is behind, but not while settings are being held back.
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
    const ReverbSlot* room = nullptr; ///< Into which the sound goes now,
    bool isClosed = false; ///< unless the way there is closed,
    std::int64_t closedSince = 0; ///< on the device's mix clock.
};

} // namespace Quon
