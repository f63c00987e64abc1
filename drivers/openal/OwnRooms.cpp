#include "drivers/openal/OwnRooms.h"

#include <algorithm>

namespace Quon
{

namespace
{

constexpr std::int64_t cutOffMs = 50;

/// How long a room remains audible without input.
std::int64_t GetRingMs(const FXEnvReverb& room)
{
    const float longest = room.decayTime * std::max(room.decayHFRatio, 1.0F);
    return static_cast<std::int64_t>(1000.0F * (longest + room.reflectionsDelay + room.reverbDelay));
}

} // namespace

void OwnRooms::Create(const EfxFunctions& functions)
{
    const std::scoped_lock lock(mutex);
    efx = functions;
    isCreated = true;
    for (Place& place : places) {
        if (!place.slot.IsEmpty()) {
            Create(place.slot);
        }
    }
}

void OwnRooms::Destroy()
{
    const std::scoped_lock lock(mutex);
    isCreated = false;
    for (Place& place : places) {
        place.slot.Destroy();
    }
}

const ReverbSlot* OwnRooms::Take(const FXEnvReverb& room)
{
    const std::scoped_lock lock(mutex);
    Place* place = Find(room);
    if (place) {
        place->slot.Return();
    }
    else if ((place = FindEmpty())) {
        place->slot.Load(room);
    }
    else {
        return nullptr;
    }
    ++place->users;
    return &place->slot;
}

OwnRooms::Place* OwnRooms::Find(const FXEnvReverb& room)
{
    const auto found = std::find_if(places.begin(), places.end(),
        [&](const Place& place) { return !place.slot.IsEmpty() && IsSame(place.slot.GetRoom(), room); });
    return found == places.end() ? nullptr : &*found;
}

bool OwnRooms::Create(ReverbSlot& slot)
{
    return slot.Create(efx, ReverbSlot::Rolloff::OfSource);
}

OwnRooms::Place* OwnRooms::FindEmpty()
{
    for (Place& place : places) {
        if (place.slot.IsEmpty() && (!isCreated || place.slot.IsCreated() || Create(place.slot))) {
            return &place;
        }
    }
    return nullptr;
}

void OwnRooms::GiveBack(const ReverbSlot* slot, bool isCutOff, std::int64_t now, std::int64_t ticksPerSecond)
{
    const std::scoped_lock lock(mutex);
    for (Place& place : places) {
        if (&place.slot != slot || --place.users > 0) {
            continue;
        }
        const std::int64_t ringMs = isCutOff ? 0 : GetRingMs(place.slot.GetRoom());
        place.slot.Leave(
            now + ringMs * ticksPerSecond / 1000, cutOffMs * ticksPerSecond / 1000, ticksPerSecond);
    }
}

void OwnRooms::SetRolloffFactor(float factor)
{
    const std::scoped_lock lock(mutex);
    for (Place& place : places) {
        place.slot.SetSourceRolloff(factor);
    }
}

bool OwnRooms::IsChanging()
{
    const std::scoped_lock lock(mutex);
    return std::any_of(
        places.begin(), places.end(), [](const Place& place) { return place.slot.IsLeaving(); });
}

void OwnRooms::Tick(std::int64_t time)
{
    const std::scoped_lock lock(mutex);
    for (Place& place : places) {
        place.slot.Tick(time);
    }
}

} // namespace Quon
