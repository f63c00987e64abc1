#include "tools/harmonet/Rooms.h"

#include "harmonet/definitions/EnvReverbPresets.h"
#include "tools/harmonet/ToolError.h"

namespace Tool
{

namespace
{

struct Room
{
    const char* name;
    const Quon::FXEnvReverb* reverb;
};

const Room rooms[] = {
    {"generic", &Quon::fxEnvReverbGeneric},
    {"padded-cell", &Quon::fxEnvReverbPaddedCell},
    {"room", &Quon::fxEnvReverbRoom},
    {"bathroom", &Quon::fxEnvReverbBathRoom},
    {"living-room", &Quon::fxEnvReverbLivingRoom},
    {"stone-room", &Quon::fxEnvReverbStoneRoom},
    {"auditorium", &Quon::fxEnvReverbAuditorium},
    {"concert-hall", &Quon::fxEnvReverbConcertHall},
    {"cave", &Quon::fxEnvReverbCave},
    {"arena", &Quon::fxEnvReverbArena},
    {"hangar", &Quon::fxEnvReverbHangar},
    {"carpeted-hallway", &Quon::fxEnvReverbCarpetedHallway},
    {"hallway", &Quon::fxEnvReverbHallway},
    {"stone-corridor", &Quon::fxEnvReverbStoneCorridor},
    {"alley", &Quon::fxEnvReverbAlley},
    {"forest", &Quon::fxEnvReverbForest},
    {"city", &Quon::fxEnvReverbCity},
    {"mountains", &Quon::fxEnvReverbMountains},
    {"quarry", &Quon::fxEnvReverbQuarry},
    {"plain", &Quon::fxEnvReverbPlain},
    {"parking-lot", &Quon::fxEnvReverbParkingLot},
    {"sewer-pipe", &Quon::fxEnvReverbSewerPipe},
    {"underwater", &Quon::fxEnvReverbUnderwater},
    {"drugged", &Quon::fxEnvReverbDrugged},
    {"dizzy", &Quon::fxEnvReverbDizzy},
    {"psychotic", &Quon::fxEnvReverbPsychotic},
};

} // namespace

std::vector<std::string> RoomNames()
{
    std::vector<std::string> names;
    for (const Room& room : rooms) {
        names.emplace_back(room.name);
    }
    return names;
}

const Quon::FXEnvReverb& GetRoom(const std::string& name)
{
    for (const Room& room : rooms) {
        if (name == room.name) {
            return *room.reverb;
        }
    }
    throw ToolError("there is no room '" + name + "'", ExitCode::BadArguments);
}

} // namespace Tool
