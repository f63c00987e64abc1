#include "drivers/openal/SourceAcoustics.h"

#include "drivers/openal/Acoustics.h"
#include "drivers/openal/OutputDevice.h"
#include "harmonet/definitions/SndFXList.h"

#include <cstring>

namespace Quon
{

namespace
{

constexpr int roomSend = 0;
constexpr int ownRoomSend = 1;
constexpr PathGain closed = {0.0F, 1.0F};

template<class Record>
std::optional<Record> FindRecord(const SndFXList& effects, SndFX kind)
{
    const SndFXDesc* const desc = effects.GetFXDesc(kind);
    const std::size_t qualityBytes = kind == SndFXEnvReverb ? sizeof(std::int32_t) : 0;
    if (!desc || desc->size < sizeof(Record) + qualityBytes) {
        return std::nullopt;
    }
    Record record;
    std::memcpy(&record, desc->GetRecord(), sizeof record);
    return record;
}

ALuint GetName(const ReverbSlot* slot)
{
    return slot ? slot->GetName() : AL_EFFECTSLOT_NULL;
}

} // namespace

void SourceAcoustics::Begin(ALuint newSource, bool isPositional, bool refusesRoom, const SndFXList& effects)
{
    positional = isPositional;
    entersRoom = isPositional && !refusesRoom && acoustics.GetSendCount() > roomSend;
    properties.reset();
    if (positional) {
        if (auto found = FindRecord<FXEnvReverbSourceProperties>(effects, SndFXEnvReverbSource)) {
            properties = ClampProperties(*found);
        }
    }
    ownRoom = nullptr;
    if (acoustics.GetSendCount() > ownRoomSend) {
        if (auto found = FindRecord<FXEnvReverb>(effects, SndFXEnvReverb)) {
            ownRoom = acoustics.GetOwnRooms().Take(ClampReverb(*found));
        }
    }
    Rebind(newSource);
}

void SourceAcoustics::End(bool isCutOff)
{
    if (ownRoom) {
        const OutputDevice& device = acoustics.GetDevice();
        acoustics.GetOwnRooms().GiveBack(ownRoom, isCutOff, device.GetTime(), device.GetTicksPerSecond());
        ownRoom = nullptr;
    }
}

void SourceAcoustics::Rebind(ALuint newSource)
{
    source = newSource;
    isClosed = false;
    room = GetTarget();
    acoustics.GetFilters().Begin(source, acoustics.GetSendCount());
    if (properties) {
        ApplyDirect();
    }
    if (room) {
        ApplyRoomSend();
    }
    if (ownRoom && acoustics.GetSendCount() > ownRoomSend) {
        acoustics.GetFilters().SetSend(source, ownRoomSend, GetName(ownRoom), {});
    }
}

bool SourceAcoustics::SetProperties(const FXEnvReverbSourceProperties* wanted)
{
    if (!wanted || !positional || acoustics.GetSendCount() == 0) {
        return false;
    }
    properties = ClampProperties(*wanted);
    ApplyDirect();
    if (room && !isClosed) {
        ApplyRoomSend();
    }
    return true;
}

bool SourceAcoustics::GetProperties(FXEnvReverbSourceProperties* record) const
{
    if (!record || !properties || acoustics.GetSendCount() == 0) {
        return false;
    }
    *record = *properties;
    return true;
}

bool SourceAcoustics::GetOwnRoom(FXEnvReverb* record) const
{
    if (!record || !ownRoom || acoustics.GetSendCount() <= ownRoomSend) {
        return false;
    }
    *record = ownRoom->GetRoom();
    return true;
}

void SourceAcoustics::Follow(bool isPlaying)
{
    const OutputDevice& device = acoustics.GetDevice();
    if (room && isPlaying && source != 0) {
        const std::int64_t now = device.GetMixClock();
        if (!isClosed) {
            acoustics.GetFilters().SetSend(source, roomSend, GetName(room), closed);
            isClosed = true;
            closedSince = now;
            return;
        }
        if (now - closedSince < device.GetSettleTime()) {
            return;
        }
    }
    room = GetTarget();
    isClosed = false;
    ApplyRoomSend();
}

const ReverbSlot* SourceAcoustics::GetTarget() const
{
    return entersRoom ? acoustics.GetRoom().GetSlot() : nullptr;
}

void SourceAcoustics::ApplyDirect()
{
    acoustics.GetFilters().SetDirect(source, GetDirectGain(*properties));
    acoustics.GetFilters().SetRoomRolloff(source, properties->roomRolloffFactor);
}

void SourceAcoustics::ApplyRoomSend()
{
    const PathGain path = properties ? GetRoomGain(*properties) : PathGain{};
    acoustics.GetFilters().SetSend(source, roomSend, GetName(room), path);
}

} // namespace Quon
