#include "examples/effects/RoomTable.h"

#include "examples/effects/Decay.h"
#include "examples/effects/Stage.h"

#include "harmonet/definitions/EnvReverbPresets.h"
#include "harmonet/definitions/SndFXList.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <stdexcept>

namespace EffectsExample
{

namespace
{

struct Preset
{
    const char* name;
    const Quon::FXEnvReverb& room;
};

const Preset presets[] = {
    {"Default", Quon::fxEnvReverbDefault},
    {"Generic", Quon::fxEnvReverbGeneric},
    {"PaddedCell", Quon::fxEnvReverbPaddedCell},
    {"Room", Quon::fxEnvReverbRoom},
    {"BathRoom", Quon::fxEnvReverbBathRoom},
    {"LivingRoom", Quon::fxEnvReverbLivingRoom},
    {"StoneRoom", Quon::fxEnvReverbStoneRoom},
    {"Auditorium", Quon::fxEnvReverbAuditorium},
    {"ConcertHall", Quon::fxEnvReverbConcertHall},
    {"Cave", Quon::fxEnvReverbCave},
    {"Arena", Quon::fxEnvReverbArena},
    {"Hangar", Quon::fxEnvReverbHangar},
    {"CarpetedHallway", Quon::fxEnvReverbCarpetedHallway},
    {"Hallway", Quon::fxEnvReverbHallway},
    {"StoneCorridor", Quon::fxEnvReverbStoneCorridor},
    {"Alley", Quon::fxEnvReverbAlley},
    {"Forest", Quon::fxEnvReverbForest},
    {"City", Quon::fxEnvReverbCity},
    {"Mountains", Quon::fxEnvReverbMountains},
    {"Quarry", Quon::fxEnvReverbQuarry},
    {"Plain", Quon::fxEnvReverbPlain},
    {"ParkingLot", Quon::fxEnvReverbParkingLot},
    {"SewerPipe", Quon::fxEnvReverbSewerPipe},
    {"Underwater", Quon::fxEnvReverbUnderwater},
    {"Drugged", Quon::fxEnvReverbDrugged},
    {"Dizzy", Quon::fxEnvReverbDizzy},
    {"Psychotic", Quon::fxEnvReverbPsychotic},
};

/// Renders `count` simultaneous clicks in a room and returns the result without the clicks themselves.
std::vector<double> RenderClicks(const std::filesystem::path& file, const Quon::FXEnvReverb& room, int count)
{
    const Pcm click = MakeClick();
    Stage stage(file);
    if (!stage.GetListener().SetFXEnvReverb(&room, Quon::defaultEnvReverbQuality, 0)) {
        throw std::runtime_error("the driver does not support rooms");
    }
    Quon::FXEnvReverbSourceProperties onlyRoom{};
    onlyRoom.direct = -10000;
    for (int i = 0; i < count; ++i) {
        const int id = stage.Add(click, {0.0F, 0.0F, -1.0F});
        stage.GetSounds().SetFXEnvReverbSourceProperties(id, &onlyRoom);
        stage.Start(id);
    }
    stage.Run(1000 + static_cast<long>(1000.0F * room.decayTime));
    return stage.Read().left;
}

/// Returns a click in a room, as loud as the 16-bit file allows. Quiet rooms would otherwise end in
/// quantisation noise.
std::vector<double> RenderLoudClick(const std::filesystem::path& file, const Quon::FXEnvReverb& room)
{
    std::vector<double> heard = RenderClicks(file, room, 1);
    double peak = 0.0;
    for (const double sample : heard) {
        peak = std::max(peak, std::abs(sample));
    }
    const int count = std::min(static_cast<int>(0.9 / std::max(peak, 0.001)), Stage::maxSounds);
    return count > 1 ? RenderClicks(file, room, count) : heard;
}

/// Returns how long a room decays at 500 Hz, relative to its decay time.
double MeasureRatio(const std::filesystem::path& folder, const Quon::FXEnvReverb& room)
{
    const std::vector<double> heard = RenderLoudClick(folder / "click.wav", room);
    return MeasureDecay(heard, rateHz, 500.0) / double{room.decayTime};
}

} // namespace

void PrintRoomTable(const std::filesystem::path& folder)
{
    constexpr double tolerance = 0.1;
    std::printf(
        "| preset | decay time, s | ratio at high frequencies | measured at 500 Hz, s | of the decay time | "
        "the late reverb alone, with a ratio of 1 |\n|---|---|---|---|---|---|\n");
    for (const Preset& preset : presets) {
        const double ratio = MeasureRatio(folder, preset.room);
        std::printf("| `fxEnvReverb%s` | %.2f | %.2f | %.2f | %.2f |", preset.name,
            double{preset.room.decayTime}, double{preset.room.decayHFRatio},
            ratio * double{preset.room.decayTime}, ratio);
        if (std::abs(ratio - 1.0) <= tolerance) {
            std::printf(" – |\n");
            continue;
        }
        Quon::FXEnvReverb even = preset.room;
        even.decayHFRatio = 1.0F;
        even.reflections = -10000;
        std::printf(" %.2f |\n", MeasureRatio(folder, even));
    }
}

} // namespace EffectsExample
