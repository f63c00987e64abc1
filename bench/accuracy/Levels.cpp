#include "bench/accuracy/Rows.h"

#include "harmonet/definitions/EnvReverbPresets.h"
#include "harmonet/definitions/FXRecords.h"

#include <cstdio>

namespace Accuracy
{

namespace
{

struct Preset
{
    const char* name;
    const Quon::FXEnvReverb& room;
};

const Preset presets[] = {{"Generic", Quon::fxEnvReverbGeneric}, {"Default", Quon::fxEnvReverbDefault},
    {"PaddedCell", Quon::fxEnvReverbPaddedCell}, {"Room", Quon::fxEnvReverbRoom},
    {"BathRoom", Quon::fxEnvReverbBathRoom}, {"LivingRoom", Quon::fxEnvReverbLivingRoom},
    {"StoneRoom", Quon::fxEnvReverbStoneRoom}, {"Auditorium", Quon::fxEnvReverbAuditorium},
    {"ConcertHall", Quon::fxEnvReverbConcertHall}, {"Cave", Quon::fxEnvReverbCave},
    {"Arena", Quon::fxEnvReverbArena}, {"Hangar", Quon::fxEnvReverbHangar},
    {"CarpetedHallway", Quon::fxEnvReverbCarpetedHallway}, {"Hallway", Quon::fxEnvReverbHallway},
    {"StoneCorridor", Quon::fxEnvReverbStoneCorridor}, {"Alley", Quon::fxEnvReverbAlley},
    {"Forest", Quon::fxEnvReverbForest}, {"City", Quon::fxEnvReverbCity},
    {"Mountains", Quon::fxEnvReverbMountains}, {"Quarry", Quon::fxEnvReverbQuarry},
    {"Plain", Quon::fxEnvReverbPlain}, {"ParkingLot", Quon::fxEnvReverbParkingLot},
    {"SewerPipe", Quon::fxEnvReverbSewerPipe}, {"Underwater", Quon::fxEnvReverbUnderwater},
    {"Drugged", Quon::fxEnvReverbDrugged}, {"Dizzy", Quon::fxEnvReverbDizzy},
    {"Psychotic", Quon::fxEnvReverbPsychotic}};

/// The left side of four seconds of steady noise in a room, without the noise itself and without reflections.
std::vector<double> RenderLate(Quon::FXEnvReverb room)
{
    Stage stage(44100);
    room.reflections = -10000;
    stage.GetDriver().SetFXEnvReverb(&room, 2, 0);
    std::uint32_t state = 1;
    Quon::SndFile& noise = stage.Make(44100, 44100 * 4, [&state](int) {
        state = state * 1664525U + 1013904223U;
        return static_cast<double>(state >> 8) / 16777216.0 - 0.5;
    });
    Quon::SndChannel& channel = stage.Create(noise, Quon::ChanPositional | Quon::ChanLooping);
    const Quon::FXEnvReverbSourceProperties onlyRoom = {-10000, 0, 0, 0, 0.0F, 0, 0.0F, 0, 0.0F};
    channel.SetFXEnvReverbSourceProperties(&onlyRoom);
    channel.SetPosition({0.0F, 0.0F, -1.0F});
    channel.Play();
    stage.Run(2.0 + room.decayTime);
    stage.Run(4.0);
    std::vector<double> heard = stage.Read().left;
    heard.erase(heard.begin(), heard.end() - 44100 * 4);
    return heard;
}

/// The levels of the late reverb in the octaves around 500 and 250 Hz.
struct Late
{
    double at500;
    double at250;
};

Late MeasureLate(const Quon::FXEnvReverb& room)
{
    const std::vector<double> heard = RenderLate(room);
    const auto measure = [&](double hz) {
        return ToDecibels(GetLevel(FilterOctave(heard, hz, 44100), 4410, heard.size()));
    };
    return {measure(500), measure(250)};
}

} // namespace

void PrintLevels()
{
    std::printf("| preset | decay time, s | late level by the record, dB | heard, dB | error, dB "
                "| error at 250 Hz, dB |\n|---|---|---|---|---|---|\n");
    const Quon::FXEnvReverb& usual = Quon::fxEnvReverbGeneric;
    const Late generic = MeasureLate(usual);
    for (const Preset& preset : presets) {
        const Late heard = MeasureLate(preset.room);
        const double expected = (preset.room.room + preset.room.reverb - usual.room - usual.reverb) / 100.0;
        std::printf("| `fxEnvReverb%s` | %.2f | %.1f | %.1f | %.1f | %.1f |\n", preset.name,
            double{preset.room.decayTime}, expected, heard.at500 - generic.at500,
            heard.at500 - generic.at500 - expected, heard.at250 - generic.at250 - expected);
        std::fflush(stdout);
    }
}

} // namespace Accuracy
