#include "drivers/openal/Room.h"

#include <algorithm>

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
    std::size_t count = 0;
    for (ReverbSlot& slot : slots) {
        count += slot.Create(functions, ReverbSlot::Rolloff::OfRoom) ? 1 : 0;
    }
    isSingle = count == 1;
    const ReverbSlot* const stoodIn = current;
    if (isSingle && stoodIn && !stoodIn->IsCreated()) {
        current = nullptr;
        isPending = true;
    }
    return count > 0;
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
        // Sounds are sent into it at once.
        currentSince = never;
    }
}

bool Room::IsChanging()
{
    const std::scoped_lock lock(mutex);
    return isPending ||
        std::any_of(slots.begin(), slots.end(), [](const ReverbSlot& slot) { return slot.IsLeaving(); });
}

void Room::Leave(ReverbSlot& left, std::int64_t now, std::int64_t ticksPerSecond)
{
    left.Leave(now, leavingMs * ticksPerSecond / 1000, ticksPerSecond);
}

void Room::MoveOn(std::int64_t now, std::int64_t ticksPerSecond)
{
    ReverbSlot* const left = current;
    if (wanted && left && IsSame(*wanted, left->GetRoom())) {
        isPending = false;
        return;
    }
    // No sound has been sent into this room yet.
    if (wanted && left && now == currentSince) {
        left->Load(*wanted);
        isPending = false;
        return;
    }
    ReverbSlot* next = nullptr;
    if (wanted) {
        next = FindEmpty();
        if (!next) {
            if (isSingle && left) {
                Leave(*left, now, ticksPerSecond);
                current = nullptr;
            }
            return;
        }
        next->Load(*wanted);
    }
    if (left) {
        Leave(*left, now, ticksPerSecond);
    }
    current = next;
    currentSince = now;
    isPending = false;
}

ReverbSlot* Room::FindEmpty()
{
    for (ReverbSlot& slot : slots) {
        if (slot.IsEmpty() && (slot.IsCreated() || !isSingle)) {
            return &slot;
        }
    }
    return nullptr;
}

} // namespace Quon
