// Plays a looping sound and opens a pause menu for a second: pause_menu FOLDER NAME.

#include "harmonet/engine/File.h"
#include "harmonet/engine/OS.h"
#include "harmonet/engine/TaskList.h"
#include "harmonet/instances/Sound.h"
#include "harmonet/kernel/SoundSystem.h"

#include <chrono>
#include <thread>

namespace
{

void RunFrames(int count)
{
    for (int i = 0; i < count; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        Quon::TaskList::Get().Update(0.05F);
    }
}

} // namespace

int main(int argumentCount, char** arguments)
{
    constexpr int second = 20;
    if (argumentCount != 3 || !Quon::File::AddRoot("", arguments[1])) {
        return 1;
    }
    Quon::OS os;
    os.GetOptions()->Set("Sound", "HarmonetOpenAL,HarmonetNull");
    os.GetOptions()->Set("SoundFrequency", "44100");
    Quon::SoundSystem system;
    if (!system.Init(&os, false)) {
        return 1;
    }

    // Two groups, so that the menu can be heard while the game is paused.
    Quon::Sound game;
    Quon::Sound menu;
    constexpr int flags = Quon::Sound::StartNowOrCompete;
    if (game.Play2DSound(arguments[2], nullptr, flags | Quon::Sound::StartLooping, 0, 0) == 0) {
        return 1;
    }
    RunFrames(second);
    game.Pause();
    menu.Play2DSound(arguments[2], nullptr, flags, 0, 0);
    RunFrames(second);
    game.Resume();
    RunFrames(second);
}
