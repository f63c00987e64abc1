// Shows what the effects do. harmonet_effects sounds FOLDER renders one dry sound through each insert effect
// and in six rooms to files in FOLDER. harmonet_effects rooms FOLDER and harmonet_effects places FOLDER
// render test sounds to FOLDER, measure them and print a table.

#include "examples/effects/EffectSounds.h"
#include "examples/effects/PlacementTable.h"
#include "examples/effects/RoomTable.h"

#include <cstdio>
#include <exception>
#include <string_view>

int main(int argumentCount, char** arguments)
{
    const std::string_view what = argumentCount == 3 ? arguments[1] : "";
    const auto run = what == "sounds" ? EffectsExample::RenderSounds
        : what == "rooms"             ? EffectsExample::PrintRoomTable
        : what == "places"            ? EffectsExample::PrintPlacementTable
                                      : nullptr;
    if (!run) {
        std::fprintf(stderr, "usage: harmonet_effects sounds|rooms|places FOLDER\n");
        return 2;
    }
    try {
        std::filesystem::create_directories(arguments[2]);
        run(arguments[2]);
    }
    catch (const std::exception& error) {
        std::fprintf(stderr, "harmonet_effects: %s\n", error.what());
        return 1;
    }
    return 0;
}
