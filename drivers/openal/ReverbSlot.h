#pragma once

#include "drivers/openal/EfxFunctions.h"
#include "drivers/openal/Fades.h"
#include "drivers/openal/ReverbRecords.h"

#include <cstdint>

namespace Quon
{

/// One OpenAL reverb, to which any number of sources can be sent: a slot for a room, initially empty.
///
/// Owned by the listener's room or by those of the sounds, and guarded by the owner's lock; the calling
/// thread needs a ContextScope. The settings are stored here, so that the slot can be recreated on another
/// device. An empty slot costs almost nothing, a room some milliseconds of processor time per second, even in
/// silence.
class ReverbSlot
{
public:
    /// How the level of the room falls with the distance of the source.
    enum class Rolloff
    {
        OfRoom, ///< By the factors of the room and the source, which can be 0.
        OfSource ///< Like the source's direct sound.
    };

    /// Creates the slot on a device and loads its room if it is in use; can be called again for another
    /// device. Returns false if OpenAL has no slots left.
    bool Create(const EfxFunctions& functions, Rolloff newRolloff);
    /// No source may be sent to it.
    void Destroy();
    bool IsCreated() const { return slot != 0; }

    /// The factor of the sources' rolloff with distance, 1 at first. Counts with Rolloff::OfSource.
    void SetSourceRolloff(float factor);

    /// Loads a room, which must have been clamped, at full level. It starts without reverberation unless the
    /// slot is in use.
    void Load(const FXEnvReverb& newRoom);

    /// Fades the room out from `begin` over `length`, in ticks of the device's clock, which has
    /// `ticksPerSecond`; when the fade-out has been played, the slot is empty.
    void Leave(std::int64_t begin, std::int64_t length, std::int64_t ticksPerSecond);
    /// Cancels Leave().
    void Return();

    /// Sets the level for `time`.
    void Tick(std::int64_t time);

    /// Whether it is being faded out, or will be.
    bool IsLeaving() const { return !isEmpty && fadeOut.IsRunning(); }

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
    FadeOutRamp fadeOut;
    std::int64_t linger = 0; ///< From the end of the fade-out until the slot is empty.
};

} // namespace Quon
