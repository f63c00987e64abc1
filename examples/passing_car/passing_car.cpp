// Plays a looping sound on a car that passes the listener at 30 m/s: passing_car FOLDER NAME.

#include "harmonet/engine/File.h"
#include "harmonet/engine/OS.h"
#include "harmonet/engine/TaskList.h"
#include "harmonet/instances/Microphone.h"
#include "harmonet/instances/Sound.h"
#include "harmonet/kernel/SoundSystem.h"

#include <chrono>
#include <thread>

int main(int argumentCount, char** arguments)
{
    constexpr float seconds = 0.05F;
    constexpr float speed = 30.0F;
    if (argumentCount != 3 || !Quon::File::AddRoot("", arguments[1])) {
        return 1;
    }
    Quon::OS os;
    os.GetOptions()->Set("Sound", "HarmonetOpenAL,HarmonetNull");
    os.GetOptions()->Set("SoundFrequency", "44100");
    // In percent: the natural strength. World units are metres here, so the speed of sound stays at 343.
    os.GetOptions()->Set("SoundDoppler", "100");
    Quon::SoundSystem system;
    if (!system.Init(&os, false)) {
        return 1;
    }

    Quon::Microphone microphone;
    microphone.Activate();
    Quon::Sound cars;
    Quon::Particle car;
    Quon::Vector3 place{-90.0F, 0.0F, -3.0F};
    car.SetPosition(place);
    Quon::Sound::Settings settings;
    settings.setDistance = true;
    settings.minDistance = 3.0F;
    settings.maxDistance = 200.0F;
    constexpr int flags = Quon::Sound::StartNowOrCompete | Quon::Sound::StartLooping;
    if (cars.Play3DSound(&car, "", arguments[2], nullptr, flags, 0, settings, 0) == 0) {
        return 1;
    }
    for (; place.x < 90.0F; place.x += speed * seconds) {
        car.SetPosition(place);
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        Quon::TaskList::Get().Update(seconds);
    }
}
