#pragma once

#include "drivers/openal/ReverbSlot.h"

#include <array>
#include <mutex>

namespace Quon
{

/// The rooms of single sounds. Owned by the Acoustics. OpenAL calls need a ContextScope.
///
/// Sounds with the same room share it, so that all sources of a line use one. A room decays after the end of
/// its last sound, without keeping that sound's channel, and is faded out in 50 ms when that sound is
/// stopped. Such a room is attenuated with the distance of its sound, so `roomRolloffFactor` has no effect
/// here. The number of rooms is limited by their processor load; a sound plays without its room if none is
/// left.
class OwnRooms
{
public:
    static constexpr std::size_t maxRooms = 8;

    /// Creates the slots of the rooms in use on a device; further ones are created on demand.
    void Create(const EfxFunctions& functions);
    /// Rooms in use are kept for the next Create(). No source may be sent to the slots.
    void Destroy();

    /// Returns a slot with this room, which must have been clamped, or null. Without a device it is created
    /// on the next one. The address stays valid until the slot is returned.
    const ReverbSlot* Take(const FXEnvReverb& room);
    void GiveBack(const ReverbSlot* slot, bool isCutOff, std::int64_t now, std::int64_t ticksPerSecond);

    /// The factor of the sources' rolloff with distance, which the rooms share.
    void SetRolloffFactor(float factor);

    void Tick(std::int64_t time);

    /// Whether a room is being faded out.
    bool IsChanging();

private:
    struct Place
    {
        ReverbSlot slot;
        int users = 0;
    };

    bool Create(ReverbSlot& slot);
    Place* Find(const FXEnvReverb& room);
    Place* FindEmpty();

    EfxFunctions efx;
    bool isCreated = false;
    std::mutex mutex; ///< Guards all members.
    std::array<Place, maxRooms> places;
};

} // namespace Quon
