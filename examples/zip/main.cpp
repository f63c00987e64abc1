// Plays a sound file or definition from a zip archive, or lists all of them: zip_sounds ARCHIVE.zip [NAME
// [OUT.wav]]

#include "examples/zip/ZipSource.h"

#include "harmonet/engine/OS.h"
#include "harmonet/engine/ResourceDatabase.h"
#include "harmonet/engine/TaskList.h"
#include "harmonet/instances/Sound.h"
#include "harmonet/instances/SoundPreload.h"
#include "harmonet/kernel/QuonGetPlugins.h"
#include "harmonet/kernel/SoundSystem.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <thread>

namespace
{

void PrintMessage(Quon::MessageLevel level, const char* text, void*)
{
    if (level != Quon::MessageLevel::Note) {
        std::fprintf(stderr, "%s\n", text);
    }
}

bool PrintNames(const Quon::ResourceDatabase& sounds)
{
    Quon::EngineVector<Quon::PString> names;
    const bool isListed = sounds.List("", names);
    for (const Quon::PString& name : names) {
        std::puts(name.GetText());
    }
    return isListed;
}

/// Plays a sound until it has ended: in real time, or as fast as possible when rendering.
void PlayToTheEnd(Quon::Sound& group, int id, bool isRendered)
{
    constexpr auto step = std::chrono::milliseconds(50);
    while (group.GetRemainLength(id) > 0) {
        if (!isRendered) {
            std::this_thread::sleep_for(step);
        }
        Quon::TaskList::Get().Update(0.05F);
    }
}

} // namespace

int main(int argumentCount, char** arguments)
{
    if (argumentCount < 2 || argumentCount > 4) {
        std::fprintf(stderr, "usage: zip_sounds ARCHIVE.zip [NAME [OUT.wav]]\n");
        return EXIT_FAILURE;
    }
    const bool isRendered = argumentCount == 4;
    Quon::OS os;
    os.SetMessageHook(PrintMessage);
    os.GetOptions()->Set("Sound", isRendered ? "HarmonetOpenAL" : "HarmonetOpenAL,HarmonetNull");
    os.GetOptions()->Set("OpenALRender", isRendered ? arguments[3] : nullptr);
    QuonGetPlugins();

    // The owner is the game's name for this archive. Definitions and their sound files are found in it.
    const auto archive = Zip::ZipSource::Open(arguments[1]);
    Quon::ResourceDatabase sounds;
    if (!archive || !sounds.AddFolder("sounds", archive)) {
        return EXIT_FAILURE;
    }
    if (argumentCount == 2) {
        return PrintNames(sounds) ? EXIT_SUCCESS : EXIT_FAILURE;
    }
    Quon::SoundSystem system;
    // Preload it, so that nothing is inflated while it plays.
    Quon::SoundPreload preload;
    if (!system.Init(&os, false) || !preload.Add(arguments[2], &sounds)) {
        return EXIT_FAILURE;
    }
    Quon::Sound group;
    const int id = group.Play2DSound(arguments[2], &sounds, 0, 0, 0);
    PlayToTheEnd(group, id, isRendered);
    return id != 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
