#include "drivers/openal/Acoustics.h"

#include "drivers/openal/OutputDevice.h"

namespace Quon
{

namespace
{
constexpr int usualSends = 2;
}

void Acoustics::Expect()
{
    sendCount = usualSends;
}

bool Acoustics::Create()
{
    EfxFunctions efx;
    int created = efx.Load();
    if (created > 0 && !(filters.Create(efx) && room.Create(efx))) {
        Destroy();
        created = 0;
    }
    if (created > 0) {
        ownRooms.Create(efx);
    }
    sendCount = created;
    return created > 0;
}

void Acoustics::Destroy()
{
    ownRooms.Destroy();
    room.Destroy();
    filters.Destroy();
}

bool Acoustics::SetRoom(const FXEnvReverb* newRoom)
{
    if (sendCount == 0 || !newRoom) {
        return false;
    }
    const ContextScope scope(device);
    room.Set(ClampReverb(*newRoom), device.GetTime(), device.GetTicksPerSecond());
    return true;
}

void Acoustics::ResetRoom()
{
    if (sendCount > 0) {
        const ContextScope scope(device);
        room.Set(std::nullopt, device.GetTime(), device.GetTicksPerSecond());
    }
}

void Acoustics::Tick(std::int64_t time)
{
    if (sendCount > 0) {
        room.Tick(time, device.GetTicksPerSecond());
        ownRooms.Tick(time);
    }
}

} // namespace Quon
