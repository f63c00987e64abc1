#include "harmonet/engine/OS.h"
#include "harmonet/engine/TaskList.h"
#include "harmonet/instances/Sound.h"
#include "harmonet/kernel/SoundSystem.h"

#include <array>
#include <cstdio>

// A sound in memory has to run its course on each driver, and to be reported.
namespace
{

class Witness : public Quon::SoundObserver
{
public:
    void OnSoundBegin(int, const Quon::PString&) override { ++begins; }
    void OnSoundEnd(int, const Quon::PString&) override { ++ends; }

    int begins = 0;
    int ends = 0;
};

} // namespace

#if defined(HAS_PARTS)
bool AreAllPartsTheSame();
#else
static bool AreAllPartsTheSame()
{
    return true;
}
#endif

namespace
{

int Fail(const char* what)
{
    std::fprintf(stderr, "consumer: %s\n", what);
    return 1;
}

} // namespace

namespace
{

int PlayOn(const char* driver)
{
    Quon::OS os;
#if defined(OWN_DRIVER_FOLDER)
    os.AddDriverFolder(OWN_DRIVER_FOLDER);
#endif
    os.GetOptions()->Set("Sound", driver);
    Quon::SoundSystem system;
    if (!system.Init(&os, false)) {
        return Fail("the sound system does not start");
    }

    constexpr int rateHz = 8000;
    std::array<short, rateHz / 2> halfSecond{};
    Quon::WaveFormatEx format{Quon::waveTagPcm, 1, rateHz, 2 * rateHz, 2, 16, 0};
    Quon::Sound sound;
    Witness witness;
    sound.AddObserver(&witness);
    if (sound.Play2DSound(halfSecond.data(), sizeof halfSecond, &format, 0, 0, 0) == 0) {
        return Fail("the sound does not start");
    }

    constexpr float stepSeconds = 0.05F;
    for (int step = 0; step < 20; ++step) {
        Quon::TaskList::Get().Update(stepSeconds);
    }
    if (witness.begins != 1 || witness.ends != 1) {
        return Fail("the sound has not run its course");
    }
    return 0;
}

} // namespace

int main()
{
    if (!AreAllPartsTheSame()) {
        return Fail("a header means something else beside <windows.h>");
    }
#if defined(OWN_DRIVER_FOLDER)
    if (PlayOn("OwnDriver") != 0) {
        return Fail("the driver that is built out of tree does not play");
    }
#endif
    return PlayOn("HarmonetNull");
}
