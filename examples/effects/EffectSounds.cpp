#include "examples/effects/EffectSounds.h"

#include "examples/effects/Stage.h"

#include "harmonet/definitions/EnvReverbPresets.h"
#include "harmonet/definitions/SndFXList.h"

#include <functional>
#include <stdexcept>

namespace EffectsExample
{

namespace
{

constexpr long durationMs = 3000;
constexpr Quon::Vector3 place = {0.0F, 0.0F, -1.0F};

struct Insert
{
    const char* name;
    std::function<bool(Quon::Sound&, int)> set;
};

// Settings that are clearly visible in a spectrogram. harmonet/definitions/FXRecords.h documents the fields.
const Insert inserts[] = {
    {"chorus",
        [](Quon::Sound& sounds, int id) {
            const Quon::FXChorus chorus = {60, 40, 30, 1.5F, 1, 12, 3};
            return sounds.SetFXChorus(id, &chorus);
        }},
    {"flanger",
        [](Quon::Sound& sounds, int id) {
            const Quon::FXFlanger flanger = {50, 100, 60, 0.5F, 1, 2, 2};
            return sounds.SetFXFlanger(id, &flanger);
        }},
    {"echo",
        [](Quon::Sound& sounds, int id) {
            const Quon::FXEcho echo = {50, 50, 250, 250, 0};
            return sounds.SetFXEcho(id, &echo);
        }},
    {"distortion",
        [](Quon::Sound& sounds, int id) {
            const Quon::FXDistortion distortion = {-12, 60, 2400, 2400, 4000};
            return sounds.SetFXDistortion(id, &distortion);
        }},
    {"compressor",
        [](Quon::Sound& sounds, int id) {
            const Quon::FXCompressor compressor = {15, 5, 200, -40, 10, 4};
            return sounds.SetFXCompressor(id, &compressor);
        }},
    {"equaliser",
        [](Quon::Sound& sounds, int id) {
            const Quon::FXParamEq equaliser = {3000, 12, 15};
            return sounds.SetFXParamEq(id, &equaliser);
        }},
    {"gargle",
        [](Quon::Sound& sounds, int id) {
            const Quon::FXGargle gargle = {25, 1};
            return sounds.SetFXGargle(id, &gargle);
        }},
    {"wavesreverb",
        [](Quon::Sound& sounds, int id) {
            const Quon::FXWavesReverb reverb = {0, -6, 1500, 0.3F};
            return sounds.SetFXWavesReverb(id, &reverb);
        }},
};

struct NamedRoom
{
    const char* name;
    const Quon::FXEnvReverb& room;
};

const NamedRoom rooms[] = {
    {"room-room", Quon::fxEnvReverbRoom},
    {"room-bathroom", Quon::fxEnvReverbBathRoom},
    {"room-stonecorridor", Quon::fxEnvReverbStoneCorridor},
    {"room-cave", Quon::fxEnvReverbCave},
    {"room-hangar", Quon::fxEnvReverbHangar},
    {"room-underwater", Quon::fxEnvReverbUnderwater},
};

void Render(const std::filesystem::path& file, const Insert* insert, const NamedRoom* room)
{
    const Pcm dry = MakeDrySound();
    Stage stage(file);
    const int id = stage.Add(dry, place);
    if (insert && !insert->set(stage.GetSounds(), id)) {
        throw std::runtime_error(std::string("no effect: ") + insert->name);
    }
    if (room && !stage.GetListener().SetFXEnvReverb(&room->room, Quon::defaultEnvReverbQuality, 0)) {
        throw std::runtime_error("the driver does not support rooms");
    }
    stage.Start(id);
    stage.Run(durationMs);
}

} // namespace

void RenderSounds(const std::filesystem::path& folder)
{
    std::filesystem::create_directories(folder);
    Render(folder / "dry.wav", nullptr, nullptr);
    for (const Insert& insert : inserts) {
        Render(folder / (std::string(insert.name) + ".wav"), &insert, nullptr);
    }
    for (const NamedRoom& room : rooms) {
        Render(folder / (std::string(room.name) + ".wav"), nullptr, &room);
    }
}

} // namespace EffectsExample
