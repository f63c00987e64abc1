#pragma once

#include "drivers/openal/EfxFunctions.h"
#include "drivers/openal/Fades.h"
#include "drivers/openal/ReverbRecords.h"

#include <cstdint>

namespace Quon
{

/// One reverb of OpenAL, to which any number of sources can be sent: a place for a room, empty at first.
///
/// Owned by the listener's room or by those of the sounds, whose lock it is under; the calling thread brings
/// a ContextScope. What stands in it is kept here, so that it can be made again on another device. An empty
/// place costs next to nothing, a room some milliseconds of processor time for each second, also in silence.
class ReverbSlot
{
public:
    /// How the sound of the room falls with the distance of what sounds in it.
    enum class Rolloff
    {
        OfRoom, ///< By the factors of the room and of the source, which can be 0.
        OfSource ///< Like the source's direct sound.
    };

    /// The slot can be made on a device, again and again; what is in use is loaded again. False if OpenAL has
    /// no more of them.
    bool Create(const EfxFunctions& functions, Rolloff newRolloff);
    /// No source may be sent to it.
    void Destroy();
    bool IsCreated() const { return slot != 0; }

    /// The factor of the sources' rolloff with distance, 1 at first. Counts with Rolloff::OfSource.
    void SetSourceRolloff(float factor);

    /// Puts a room, which has been held, into the place at full level. Its sound begins with what comes in
    /// from now on, unless the place is in use.
    void Load(const FXEnvReverb& newRoom);

    /// From the time `begin` on the room falls silent, over `length`, and when that has been heard the place
    /// is empty. Times of the device, which has so many ticks in a second.
    void Leave(std::int64_t begin, std::int64_t length, std::int64_t ticksPerSecond);
    /// The room stays, after all.
    void Return();

    /// Sets the level to what it is to be at `time`.
    void Tick(std::int64_t time);

    /// Whether its level is on the way down, or will be.
    bool IsLeaving() const { return !isEmpty && fall.IsRunning(); }

    bool IsEmpty() const { return isEmpty; }
    const FXEnvReverb& GetRoom() const { return room; }

    /// OpenAL's name; 0 if it does not exist.
    ALuint GetName() const { return slot; }

private:
    void Apply();
    float GetRolloffFactor() const;
    void SetLevel(float newLevel);

    EfxFunctions efx;
    ALuint slot = 0;
    Rolloff rolloff = Rolloff::OfRoom;
    float sourceRolloff = 1.0F;
    bool isEmpty = true;
    float level = 1.0F;
    FXEnvReverb room{};
    Fall fall;
    std::int64_t linger = 0; ///< From the end of the fall until the place is empty.
};

} // namespace Quon
