// Plays a piece with an intro and a loop, saves the game in the middle of it, loads it again, and cross-fades
// to a second piece where the loop starts again: music FOLDER PIECE NEXT.

#include "harmonet/instances/Music.h"
#include "harmonet/engine/File.h"
#include "harmonet/engine/OS.h"
#include "harmonet/engine/PString.h"
#include "harmonet/engine/TaskList.h"
#include "harmonet/instances/MusicObserver.h"
#include "harmonet/kernel/SoundSystem.h"

#include <chrono>
#include <cstdio>
#include <thread>

namespace
{

constexpr int framesPerSecond = 20;

void RunFrames(int count)
{
    for (int i = 0; i < count; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        Quon::TaskList::Get().Update(0.05F);
    }
}

/// Cross-fades to the next piece when the current one has completed its loop.
class Conductor : public Quon::MusicObserver
{
public:
    explicit Conductor(const char* newNext)
        : next(newNext)
    {
    }

    void OnMusicBegin(Quon::Music&, const Quon::PString& name) override { Print("begins", name); }
    void OnMusicGivesWay(Quon::Music&, const Quon::PString& name) override { Print("gives way", name); }
    void OnMusicEnd(Quon::Music&, const Quon::PString& name) override
    {
        Print("ends", name);
        isOver = true;
    }
    void OnMusicLoop(Quon::Music& music, const Quon::PString& name) override
    {
        Print("loops", name);
        music.CrossFade(next, 500, false);
    }

    bool isOver = false;

private:
    static void Print(const char* what, const Quon::PString& name)
    {
        std::printf("%s %s\n", name.GetText(), what);
    }

    const char* next;
};

} // namespace

int main(int argumentCount, char** arguments)
{
    if (argumentCount != 4 || !Quon::File::AddRoot("", arguments[1])) {
        return 1;
    }
    Quon::OS os;
    os.GetOptions()->Set("Sound", "HarmonetOpenAL,HarmonetNull");
    os.GetOptions()->Set("SoundFrequency", "44100");
    Quon::SoundSystem system;
    if (!system.Init(&os, false)) {
        return 1;
    }

    // The first half second is heard once. In a definition, *LOOPING and *LOOP_START have the same effect.
    Quon::Music::Settings settings;
    settings.loop = true;
    settings.loopStart = 22050;

    // The state to store in a saved game.
    unsigned long savedMs = 0;
    {
        Quon::Music music;
        if (!music.Play(arguments[2], nullptr, settings)) {
            return 1;
        }
        RunFrames(framesPerSecond / 2);
        savedMs = music.GetPosition();
    }

    Quon::Music music;
    Conductor conductor(arguments[3]);
    music.AddObserver(&conductor);
    settings.positionMs = savedMs;
    settings.fadeMs = 200;
    if (!music.Play(arguments[2], nullptr, settings)) {
        return 1;
    }
    for (int second = 0; second < 60 && !conductor.isOver; ++second) {
        RunFrames(framesPerSecond);
    }
}
