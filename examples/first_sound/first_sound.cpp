// Plays one sound file: first_sound FOLDER NAME.

#include "harmonet/engine/File.h"
#include "harmonet/engine/OS.h"
#include "harmonet/engine/TaskList.h"
#include "harmonet/instances/Sound.h"
#include "harmonet/kernel/SoundSystem.h"

#include <chrono>
#include <cstdio>
#include <thread>

int main(int argumentCount, char** arguments)
{
    Quon::OS os;
    os.SetMessageHook([](Quon::MessageLevel, const char* text, void*) { std::puts(text); });
    if (argumentCount != 3 || !Quon::File::AddRoot("", arguments[1])) {
        return 1;
    }
    os.GetOptions()->Set("Sound", "HarmonetOpenAL,HarmonetNull");
    os.GetOptions()->Set("SoundFrequency", "44100");
    Quon::SoundSystem system;
    if (!system.Init(&os, false)) {
        return 1;
    }

    Quon::Sound sound;
    const int id = sound.Play2DSound(arguments[2], nullptr, Quon::Sound::StartNowOrCompete, 0, 0);
    while (sound.GetRemainLength(id) > 0) {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        Quon::TaskList::Get().Update(0.05F);
    }
}
