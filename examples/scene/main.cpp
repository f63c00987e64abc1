// Renders the scene: harmonet_demo RECORDINGS FOLDER. Generates the sounds in FOLDER/sounds, and writes the
// output to FOLDER/demo.wav, the history of each sound to FOLDER/demo.json, and a timeline to
// FOLDER/demo.html.

#include "examples/scene/Market.h"
#include "examples/scene/Report.h"
#include "examples/scene/SoundFolder.h"

#include "harmonet/engine/OS.h"
#include "harmonet/engine/PluginRegistry.h"
#include "harmonet/engine/TaskList.h"
#include "harmonet/instances/SoundPreload.h"
#include "harmonet/kernel/QuonGetPlugins.h"
#include "harmonet/kernel/SoundSystem.h"
#include "tools/trace/Timeline.h"

#include <cstdio>
#include <fstream>
#include <stdexcept>

namespace
{

namespace fs = std::filesystem;

constexpr const char* channels = "16";
// Leaves headroom, because many simultaneous sounds can exceed full scale.
constexpr float mainGain = 0.6F;
// Longer than the 40 ms interval of full updates, so that each game frame runs one.
constexpr long frameMs = 50;
constexpr float frameSeconds = 0.05F;

bool Render(const fs::path& folder, Scene::SoundHistory& history)
{
    Quon::OS os;
    os.GetOptions()->Set("Sound", "HarmonetOpenAL");
    os.GetOptions()->Set("OpenALRender", (folder / "demo.wav").string().c_str());
    os.GetOptions()->Set("SoundFrequency", "44100");
    os.GetOptions()->Set("MaxSounds", channels);
    QuonGetPlugins();
    Quon::ResourceDatabase database;
    Quon::SoundSystem system;
    if (!database.AddFolder("market", (folder / "sounds").string().c_str()) || !system.Init(&os, false)) {
        return false;
    }

    // A game does this while it shows a loading screen. After it, starting a sound reads no file.
    Quon::SoundPreload preload;
    if (!preload.AddFolder("", &database)) {
        throw std::runtime_error("a sound of the scene cannot be loaded");
    }
    std::printf("%zu sound files in memory, %llu bytes\n\n", preload.GetFileCount(),
        static_cast<unsigned long long>(preload.GetBytes()));

    Trace::Timeline timeline;
    Quon::SoundSystem::SetTrace(&timeline);
    Quon::SoundSystem::SetMainGain(mainGain);
    Scene::Market market(database, history);
    for (long nowMs = frameMs; nowMs <= Scene::Market::durationMs; nowMs += frameMs) {
        history.SetTime(nowMs);
        market.Step(nowMs);
        Quon::TaskList::Get().Update(frameSeconds);
        history.RecordStates(market.GetWorld());
    }
    if (Quon::SoundSystem::HasLostOutput()) {
        throw std::runtime_error("demo.wav is cut off: the disk is full");
    }
    std::ofstream page;
    page.exceptions(std::ios::failbit | std::ios::badbit);
    page.open(folder / "demo.html");
    timeline.WritePage(page);
    page.close();
    return true;
}

} // namespace

int main(int argumentCount, char** arguments)
{
    if (argumentCount != 3) {
        std::fprintf(stderr, "usage: harmonet_demo RECORDINGS FOLDER\n");
        return 2;
    }
    try {
        const fs::path folder = arguments[2];
        Scene::FillSoundFolder(arguments[1], folder / "sounds");
        Scene::SoundHistory history;
        if (!Render(folder, history)) {
            std::fprintf(stderr, "harmonet_demo: the sound system does not start\n");
            return 1;
        }
        Scene::PrintTable(history);
        Scene::WriteJson(history, folder / "demo.json");
        std::printf("\noutput: %s\ntimeline: %s\n", (folder / "demo.wav").string().c_str(),
            (folder / "demo.html").string().c_str());
    }
    catch (const std::exception& error) {
        std::fprintf(stderr, "harmonet_demo: %s\n", error.what());
        return 1;
    }
    return 0;
}
