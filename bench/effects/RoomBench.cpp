// The cost of rooms: one second of output, rendered by the OpenAL driver, with 16 quiet positional sounds:
// without a room, in a room, and after the room has been left.

#include "bench/effects/RoomBench.h"

#include "drivers/openal/OpenALDriver.h"
#include "harmonet/definitions/EnvReverbPresets.h"
#include "harmonet/definitions/SndFXList.h"
#include "harmonet/engine/OS.h"
#include "harmonet/files/SndFileWav.h"
#include "harmonet/output/SoundFormat.h"

#include <benchmark/benchmark.h>

#include <ctime>
#include <filesystem>
#include <memory>
#include <vector>

namespace
{

constexpr int rateHz = 44100;
constexpr int soundCount = 16;

/// Returns the processor time of the process. Mixing happens on the calling thread.
double GetProcessorMicroseconds()
{
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) * 1e6 + static_cast<double>(now.tv_nsec) * 1e-3;
}

/// A driver that renders its sounds to a temporary file.
class Output
{
public:
    explicit Output(const Quon::SndFXList& effects)
        : path((std::filesystem::temp_directory_path() / "harmonet-room-bench.wav").string())
        , pcm(rateHz, 1000)
        , driver(std::make_unique<Quon::OpenALDriver>())
    {
        os.GetOptions()->Set("OpenALRender", path.c_str());
        Quon::SoundFormat format;
        format.SetFormat(2, rateHz, 0, 2);
        isOpen = driver->Open(&os, &format, 500, false);
        driver->SetMaxChannels(soundCount);
        Quon::WaveFormatEx wave{};
        wave.formatTag = Quon::waveTagPcm;
        wave.channels = 1;
        wave.samplesPerSecond = rateHz;
        wave.bitsPerSample = 16;
        for (int i = 0; i < soundCount && isOpen; ++i) {
            files.push_back(std::make_unique<Quon::SndFileWav>());
            files.back()->OpenMemory(pcm.data(), pcm.size() * sizeof pcm[0], &wave);
            auto* const channel =
                driver->CreateChannel(Quon::ChanPositional | Quon::ChanLooping, files.back().get(), effects);
            const int place = i - soundCount / 2;
            channel->SetPosition({static_cast<float>(place), 0.0F, -2.0F});
            channel->Play();
        }
    }

    ~Output()
    {
        driver.reset();
        std::filesystem::remove(path);
    }

    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    bool IsOpen() const { return isOpen; }
    Quon::SndDriver& GetDriver() { return *driver; }

    void RenderSecond()
    {
        for (int i = 0; i < 20; ++i) {
            driver->BeginUpdate(50);
            driver->EndUpdate();
        }
    }

private:
    const std::string path;
    Quon::OS os;
    std::vector<std::int16_t> pcm;
    std::vector<std::unique_ptr<Quon::SndFileWav>> files;
    std::unique_ptr<Quon::OpenALDriver> driver;
    bool isOpen = false;
};

enum class Place
{
    Open,
    InRoom,
    AfterReset,
    OwnRoom ///< A room of the sounds themselves, which they share.
};

void MeasurePlace(benchmark::State& state, Place place)
{
    Quon::SndFXList effects;
    if (place == Place::OwnRoom) {
        effects.AddFX(Quon::SndFXEnvReverb, &Quon::fxEnvReverbCave, sizeof Quon::fxEnvReverbCave + 4, 2);
    }
    Output output(effects);
    effects.Clear();
    const bool wantsRoom = place == Place::InRoom || place == Place::AfterReset;
    if (!output.IsOpen() || (wantsRoom && !output.GetDriver().SetFXEnvReverb(&Quon::fxEnvReverbCave, 2, 0))) {
        state.SkipWithError("there is no output, or it does not support rooms");
        return;
    }
    output.RenderSecond();
    if (place == Place::AfterReset) {
        output.GetDriver().ResetFXEnvReverb(0);
        output.RenderSecond();
    }
    const double begin = GetProcessorMicroseconds();
    for (auto step : state) {
        output.RenderSecond();
    }
    const double spent = GetProcessorMicroseconds() - begin;
    state.counters["us_per_second_of_sound"] = spent / static_cast<double>(state.iterations());
}

} // namespace

void RegisterRooms()
{
    benchmark::RegisterBenchmark("Room/Open", MeasurePlace, Place::Open);
    benchmark::RegisterBenchmark("Room/InRoom", MeasurePlace, Place::InRoom);
    benchmark::RegisterBenchmark("Room/AfterReset", MeasurePlace, Place::AfterReset);
    benchmark::RegisterBenchmark("Room/OwnRoom", MeasurePlace, Place::OwnRoom);
}
