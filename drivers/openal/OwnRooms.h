#pragma once

#include "drivers/openal/ReverbSlot.h"

#include <array>
#include <mutex>

namespace Quon
{

/// The rooms that single sounds bring with them. Owned by the Acoustics. Calls of OpenAL need a ContextScope.
///
/// Sounds with the same room share it, so that all sources of a line cost one. A room rings out when its last
/// sound is over, without keeping that sound's channel, and is cut off in 50 ms when that sound is stopped.
/// Such a room is far away when its sound is, so that `roomRolloffFactor` means nothing here. There are as
/// many as a processor can bear; a sound that finds none left plays without.
class OwnRooms
{
public:
    static constexpr std::size_t maxRooms = 8;

    /// Makes on a device the slots of the rooms in use; further ones follow when they are needed.
    void Create(const EfxFunctions& functions);
    /// Who has a room keeps it, for the next Create(). No source may be sent to the slots.
    void Destroy();

    /// A slot with this room, which has been held, or null. Without a device it is one for the next. It stays
    /// where it is until it is given back.
    const ReverbSlot* Take(const FXEnvReverb& room);
    void GiveBack(const ReverbSlot* slot, bool isCutOff, std::int64_t now, std::int64_t ticksPerSecond);

    /// The factor of the sources' rolloff with distance, which the rooms share.
    void SetRolloffFactor(float factor);

    void Tick(std::int64_t time);

    /// Whether a room is being left.
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
    std::mutex mutex; ///< Guards all of it.
    std::array<Place, maxRooms> places;
};

} // namespace Quon
