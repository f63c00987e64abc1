#include "drivers/openal/Room.h"

namespace Quon
{

namespace
{

constexpr std::int64_t leavingMs = 200;
constexpr std::int64_t never = -1;

} // namespace

bool Room::Create(const EfxFunctions& functions)
{
    const std::scoped_lock lock(mutex);
    bool isComplete = true;
    for (ReverbSlot& slot : slots) {
        isComplete = slot.Create(functions, ReverbSlot::Rolloff::OfRoom) && isComplete;
    }
    return isComplete;
}

void Room::Destroy()
{
    const std::scoped_lock lock(mutex);
    for (ReverbSlot& slot : slots) {
        slot.Destroy();
    }
}

void Room::Set(const std::optional<FXEnvReverb>& newRoom, std::int64_t now, std::int64_t ticksPerSecond)
{
    const std::scoped_lock lock(mutex);
    wanted = newRoom;
    isPending = true;
    MoveOn(now, ticksPerSecond);
}

void Room::Tick(std::int64_t time, std::int64_t ticksPerSecond)
{
    const std::scoped_lock lock(mutex);
    for (ReverbSlot& slot : slots) {
        slot.Tick(time);
    }
    if (isPending) {
        MoveOn(time, ticksPerSecond);
        // Sounds go in at once.
        currentSince = never;
    }
}

void Room::MoveOn(std::int64_t now, std::int64_t ticksPerSecond)
{
    ReverbSlot* const left = current;
    if (wanted && left && IsSame(*wanted, left->GetRoom())) {
        isPending = false;
        return;
    }
    // Nobody has been in this room yet.
    if (wanted && left && now == currentSince) {
        left->Load(*wanted);
        isPending = false;
        return;
    }
    ReverbSlot* next = nullptr;
    if (wanted) {
        next = FindEmpty();
        if (!next) {
            return;
        }
        next->Load(*wanted);
    }
    if (left) {
        left->Leave(now, leavingMs * ticksPerSecond / 1000, ticksPerSecond);
    }
    current = next;
    currentSince = now;
    isPending = false;
}

ReverbSlot* Room::FindEmpty()
{
    for (ReverbSlot& slot : slots) {
        if (slot.IsEmpty()) {
            return &slot;
        }
    }
    return nullptr;
}

} // namespace Quon
