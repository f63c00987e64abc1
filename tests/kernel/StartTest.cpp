#include "harmonet/engine/TaskList.h"
#include "harmonet/kernel/HarmonetStrings.h"
#include "harmonet/kernel/HarmonetTask.h"
#include "harmonet/kernel/SndKernel.h"
#include "tests/support/SoundTest.h"

#include <cmath>
#include <filesystem>

#include <dlfcn.h>

namespace Quon
{
namespace
{

class StartTest : public HostTest
{
protected:
    StartTest() { folder.Write("Broken.so", "no library at all"); }

    Lines StartWith(const char* names)
    {
        SetOption("Sound", names);
        os.AddDriverFolder(folder.GetPath().c_str());
        started = Start();
        return TakeLog();
    }

    bool started = false;
};

const Lines openedLines = {"Open 2 22050 2 0 500 0", "SetCallback", "SetMaxChannels 24"};
const Lines refusedLines = {"Open 2 22050 2 0 500 0", "Delete"};

// Whatever stands in the way of one name, the next one gets its turn.
TEST_F(StartTest, TheFirstNameThatWorksWins)
{
    struct Row
    {
        const char* names;
        bool starts;
    };
    const Row rows[] = {
        {"HarmonetRecording", true},
        {"NoSuchLibrary,HarmonetRecording", true},
        {"Broken, HarmonetNoDriver , HarmonetRecording", true},
        {"NoSuchLibrary,AlsoMissing", false},
        {"HarmonetNoDriver", false},
        {"", false},
        {nullptr, false},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.names ? row.names : "not set");
        EXPECT_EQ(StartWith(row.names), row.starts ? openedLines : Lines());
        EXPECT_EQ(started, row.starts);
        EXPECT_EQ(theKernel != nullptr, row.starts);
        system.Done();
        EXPECT_EQ(TakeLog(), row.starts ? Lines{"Delete"} : Lines());
        EXPECT_EQ(theKernel, nullptr);
    }
}

TEST_F(StartTest, EachKindOfFailureHasItsCode)
{
    struct Row
    {
        const char* names;
        int code;
    };
    const Row rows[] = {
        {nullptr, 1},
        {"NoSuchLibrary,HarmonetNoDriver", 1},
        {"HarmonetNoDriver,NoSuchLibrary", 2},
        {"NoSuchLibrary,HarmonetRecording", 3},
    };
    recording.refuseOpen = true;
    for (const Row& row : rows) {
        SCOPED_TRACE(row.names ? row.names : "not set");
        SetOption("Sound", row.names);
        SndKernel kernel;
        EXPECT_EQ(kernel.Init(&os, false), row.code);
        EXPECT_EQ(theKernel, nullptr);
    }
    recording.giveNoDriver = true;
    SndKernel kernel;
    EXPECT_EQ(kernel.Init(&os, false), 3);
}

TEST_F(StartTest, ADriverThatDoesNotOpenIsDeletedAndTheNextTried)
{
    recording.refuseOpen = true;
    EXPECT_EQ(StartWith("HarmonetRecording,NoSuchLibrary"), refusedLines);
    EXPECT_FALSE(started);

    // The same library may stand there twice, and be luckier the second time.
    recording.lines.clear();
    SetOption("Sound", "HarmonetRecording,HarmonetRecording");
    EXPECT_FALSE(Start());
    EXPECT_EQ(TakeLog(), (Lines{refusedLines[0], refusedLines[1], refusedLines[0], refusedLines[1]}));
    recording.refuseOpen = false;
    EXPECT_TRUE(Start());
}

TEST_F(StartTest, OptionsReachTheDriver)
{
    SetOption("SoundFrequency", "48000");
    SetOption("MaxSounds", "7");
    SetOption("StreamLength", "250");
    EXPECT_TRUE(Start(true));
    EXPECT_EQ(TakeLog(), (Lines{"Open 2 48000 2 0 250 1", "SetCallback", "SetMaxChannels 11"}));
    EXPECT_EQ(system.GetMaxAudibleSounds(), 7U);
}

TEST_F(StartTest, WildOptionsDoNoHarm)
{
    SetOption("MaxSounds", "2147483647");
    SetOption("SoundCacheSize", "-1");
    EXPECT_TRUE(Start());
    EXPECT_GT(recording.maxChannels, 0);
    const PString file = WriteWave("a.wav", {600});
    Sound group;
    EXPECT_NE(group.Play2DSound(file, nullptr, 0, 0, 0), 0);
    Step(40);
    EXPECT_EQ(recording.channels.size(), 1U);
}

TEST_F(StartTest, ARunningSystemRefusesAnotherStart)
{
    EXPECT_TRUE(Start());
    TakeLog();
    SoundSystem other;
    EXPECT_FALSE(Start());
    EXPECT_FALSE(other.Init(&os, false));
    other.Done();
    EXPECT_NE(theKernel, nullptr);
    EXPECT_EQ(TakeLog(), Lines());
}

TEST_F(StartTest, TheDriversLibraryGoesAfterTheDriver)
{
    // Under a name of its own, so that nobody else holds it.
    const auto copy = folder.GetPath() / "HarmonetCopy.so";
    std::filesystem::copy_file(
        std::filesystem::path(HARMONET_TEST_DRIVER_FOLDER) / "HarmonetRecording.so", copy);
    StartWith("HarmonetCopy");
    EXPECT_TRUE(started);
    const auto isLoaded = [&] {
        void* handle = dlopen(copy.c_str(), RTLD_NOLOAD | RTLD_NOW);
        return handle && dlclose(handle) == 0;
    };
    EXPECT_TRUE(isLoaded());
    // The driver's destructor is code of its library.
    system.Done();
    EXPECT_FALSE(isLoaded());
}

TEST_F(StartTest, TheSystemStartsAgainAndIdsGoOn)
{
    const PString file = WriteWave("a.wav", {600});
    Sound group;
    int lastID = 0;
    for (int life = 0; life < 3; ++life) {
        EXPECT_EQ(group.New2DSound(file, nullptr), 0);
        EXPECT_TRUE(Start());
        const int id = group.Play2DSound(file, nullptr, 0, 0, 0);
        EXPECT_GT(id, lastID);
        lastID = id;
        Step(40);
        system.Done();
        system.Done();
        EXPECT_FALSE(group.StartSound(id, 0));
    }
}

TEST_F(StartTest, TheEnginesDoneStopsTheSystemAndLeavesTheTask)
{
    const PString file = WriteWave("a.wav", {600});
    Sound group;
    EXPECT_TRUE(Start());
    group.Play2DSound(file, nullptr, 0, 0, 0);
    Step(40);
    TakeLog();
    TaskList::Get().Done();
    EXPECT_EQ(TakeLog(), (Lines{"c1 Stop", "Delete"}));
    EXPECT_EQ(theKernel, nullptr);
    Step(40);
    EXPECT_EQ(TakeLog(), Lines());
    // The dead task is no hindrance.
    EXPECT_TRUE(Start());
    EXPECT_NE(theKernel, nullptr);
}

TEST_F(StartTest, AStoppedSystemAnswersEmptily)
{
    SoundSystem::Caps caps;
    caps.SetFlags(0xFFFF);
    EXPECT_FALSE(system.GetCaps(caps));
    EXPECT_EQ(caps.GetFlags(), 0U);
    SoundSystem::SetMainGain(0.5F);
    SoundSystem::Set2DMainGain(0.5F);
    SoundSystem::StopAll();
    SoundSystem::StopAll2D();
    SoundSystem::StopAll3D();
    system.SetMaxAudibleSounds(3);
    system.EnableResourceFX(1);
    system.DisableResourceFX(1);
    EXPECT_EQ(system.GetMaxAudibleSounds(), 0U);
    EXPECT_EQ(system.GetResourceFX(), 0U);
    for (const float gain : {SoundSystem::GetMainGain(), SoundSystem::Get2DMainGain(),
             SoundSystem::Get3DMainGain(), SoundSystem::GetMusicMainGain()})
        EXPECT_EQ(gain, 0.0F);
    Sound group;
    group.SetGain(0.25F);
    EXPECT_EQ(group.GetGain(), 0.25F);
    EXPECT_EQ(Sound::CalcSoundLength(WriteWave("a.wav", {600}), nullptr), 0U);
    Microphone microphone;
    microphone.Activate();
    EXPECT_FALSE(microphone.IsActive());
    EXPECT_EQ(microphone.GetRolloffFactor(), 1.0F);
}

TEST_F(StartTest, CapsAndGainsAreTheDrivers)
{
    EXPECT_TRUE(Start());
    recording.caps = 0xA5C3;
    SoundSystem::Caps caps;
    EXPECT_TRUE(system.GetCaps(caps));
    EXPECT_EQ(caps.low, 0xC3);
    EXPECT_EQ(caps.high, 0xA5);
    TakeLog();
    const std::pair<float, float> gains[] = {{0.5F, 0.5F}, {1.5F, 1.0F}, {-0.5F, 0.0F}};
    for (const auto& [given, kept] : gains) {
        SCOPED_TRACE(given);
        SoundSystem::SetMainGain(given);
        EXPECT_EQ(TakeLog(), Lines{"SetMainGain " + ToText(kept)});
        EXPECT_EQ(SoundSystem::GetMainGain(), kept);
        SoundSystem::Set2DMainGain(given);
        SoundSystem::Set3DMainGain(given);
        SoundSystem::SetMusicMainGain(given);
        EXPECT_EQ(SoundSystem::Get2DMainGain(), kept);
        EXPECT_EQ(SoundSystem::Get3DMainGain(), kept);
        EXPECT_EQ(SoundSystem::GetMusicMainGain(), kept);
    }
    SoundSystem::SetMainGain(std::nanf(""));
    SoundSystem::Set2DMainGain(std::nanf(""));
    EXPECT_EQ(TakeLog(), Lines());
    EXPECT_EQ(SoundSystem::Get2DMainGain(), 0.0F);
}

TEST_F(StartTest, TheMaskOfResourceEffectsHasNineBits)
{
    EXPECT_TRUE(Start());
    EXPECT_EQ(system.GetResourceFX(), 0x1FFU);
    system.DisableResourceFX(0xFFFFFFF0);
    EXPECT_EQ(system.GetResourceFX(), 0xFU);
    system.EnableResourceFX(0xFFFFFF00);
    EXPECT_EQ(system.GetResourceFX(), 0x10FU);
}

} // namespace
} // namespace Quon
