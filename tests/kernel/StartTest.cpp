#include "harmonet/engine/TaskList.h"
#include "harmonet/files/SndFile.h"
#include "harmonet/files/SndFileCache.h"
#include "harmonet/kernel/HarmonetStrings.h"
#include "harmonet/kernel/HarmonetTask.h"
#include "harmonet/kernel/SndKernel.h"
#include "tests/support/LoadedLibrary.h"
#include "tests/support/SoundTest.h"

#include <cmath>
#include <filesystem>

namespace Quon
{
namespace
{

using StartTest = HostTest;

const Lines openedLines = {"Open 2 22050 2 0 500 0", "SetCallback", "SetMaxChannels 24"};
const Lines refusedLines = {"Open 2 22050 2 0 500 0", "Delete"};

// If one driver fails for any reason, the next one is tried; the last determines the code of the failure.
TEST_F(StartTest, TheFirstDriverThatOpensWins)
{
    struct Row
    {
        const char* names;
        bool starts;
        int codeIfNoneOpens;
    };
    const Row rows[] = {
        {"HarmonetRecording", true, 3},
        {"NoSuchLibrary,HarmonetRecording", true, 3},
        {"Broken, HarmonetNoDriver , HarmonetRecording", true, 3},
        {"NoSuchLibrary,HarmonetNoDriver", false, 1},
        {"HarmonetNoDriver,NoSuchLibrary", false, 2},
        {"", false, 1},
        {nullptr, false, 1},
    };
    folder.Write("Broken.so", "no library at all");
    os.AddDriverFolder(folder.GetPath().string().c_str());
    for (const Row& row : rows) {
        SCOPED_TRACE(row.names ? row.names : "not set");
        SetOption("Sound", row.names);
        recording.refuseOpen = false;
        EXPECT_EQ(Start(), row.starts);
        EXPECT_EQ(TakeLog(), row.starts ? openedLines : Lines());
        EXPECT_EQ(GetRunningKernel() != nullptr, row.starts);
        system.Done();
        EXPECT_EQ(TakeLog(), row.starts ? Lines{"Delete"} : Lines());
        recording.refuseOpen = true;
        SndKernel kernel;
        EXPECT_EQ(kernel.Init(&os, false), row.codeIfNoneOpens);
        EXPECT_EQ(GetRunningKernel(), nullptr);
        EXPECT_EQ(TakeLog(), row.starts ? refusedLines : Lines());
    }
    recording.giveNoDriver = true;
    SetOption("Sound", "HarmonetRecording");
    SndKernel kernel;
    EXPECT_EQ(kernel.Init(&os, false), 3);
}

TEST_F(StartTest, OptionsReachTheDriverAndInvalidOnesAreHarmless)
{
    SetOption("SoundFrequency", "48000");
    SetOption("MaxSounds", "7");
    SetOption("StreamLength", "250");
    SetOption("MpegStandard", "1");
    EXPECT_TRUE(Start(true));
    EXPECT_TRUE(SndFile::sndFileCache->IsMpegStandard());
    EXPECT_EQ(TakeLog(), (Lines{"Open 2 48000 2 0 250 1", "SetCallback", "SetMaxChannels 11"}));
    EXPECT_EQ(system.GetMaxAudibleSounds(), 7U);
    // A running system refuses another start.
    SoundSystem other;
    EXPECT_FALSE(Start());
    EXPECT_FALSE(other.Init(&os, false));
    other.Done();
    EXPECT_NE(GetRunningKernel(), nullptr);
    EXPECT_EQ(TakeLog(), Lines());
    system.Done();

    for (const char* option :
        {"SoundFrequency", "MaxSounds", "StreamLength", "SoundCacheSize", "MpegStandard"}) {
        SetOption(option, "-3");
    }
    EXPECT_TRUE(Start());
    EXPECT_EQ(TakeLog({"Open", "SetMax"}), (Lines{"Open 2 22050 2 0 500 0", "SetMaxChannels 24"}));
    EXPECT_EQ(GetRunningKernel()->GetOptions().cacheSize, 1000000);
    EXPECT_FALSE(SndFile::sndFileCache->IsMpegStandard());
    system.Done();

    SetOption("MaxSounds", "2147483647");
    EXPECT_TRUE(Start());
    EXPECT_GT(recording.maxChannels, 0);
    Sound group;
    EXPECT_NE(group.Play2DSound(WriteWave("a.wav", {600}), nullptr, 0, 0, 0), 0);
    Step(40);
    EXPECT_EQ(recording.channels.size(), 1U);
}

TEST_F(StartTest, TheLibraryIsUnloadedAfterTheDriver)
{
    // Under a name of its own, so that no other code keeps it loaded.
    const std::string suffix = dynamicLibrarySuffix;
    const auto copy = folder.GetPath() / ("HarmonetCopy" + suffix);
    std::filesystem::copy_file(
        std::filesystem::path(HARMONET_TEST_DRIVER_FOLDER) / ("HarmonetRecording" + suffix), copy);
    os.AddDriverFolder(folder.GetPath().string().c_str());
    SetOption("Sound", "HarmonetCopy");
    EXPECT_TRUE(Start());
    EXPECT_TRUE(IsLoaded(copy));
    // The driver's destructor is code of its library.
    system.Done();
    EXPECT_FALSE(IsLoaded(copy));
}

TEST_F(StartTest, TheSystemRestartsAndIdsContinue)
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
        TakeLog();
        // The end of the engine ends the system too, and its ended task does not prevent a restart.
        if (life == 1) {
            TaskList::Get().Done();
        }
        else {
            system.Done();
        }
        EXPECT_EQ(TakeLog(), (Lines{"c1 Stop", "Delete"}));
        EXPECT_EQ(GetRunningKernel(), nullptr);
        Step(40);
        EXPECT_EQ(TakeLog(), Lines());
        EXPECT_FALSE(group.StartSound(id, 0));
    }
}

TEST_F(StartTest, AStoppedSystemReturnsDefaults)
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
             SoundSystem::Get3DMainGain(), SoundSystem::GetMusicMainGain()}) {
        EXPECT_EQ(gain, 0.0F);
    }
    EXPECT_EQ(Sound::CalcSoundLength(WriteWave("a.wav", {600}), nullptr), 0U);
    Microphone microphone;
    microphone.Activate();
    EXPECT_FALSE(microphone.IsActive());
}

TEST_F(StartTest, CapsAndGainsComeFromTheDriver)
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
    // The mask of resource effects has nine bits.
    EXPECT_EQ(system.GetResourceFX(), 0x1FFU);
    system.DisableResourceFX(0xFFFFFFF0);
    EXPECT_EQ(system.GetResourceFX(), 0xFU);
    system.EnableResourceFX(0xFFFFFF00);
    EXPECT_EQ(system.GetResourceFX(), 0x10FU);
}

} // namespace
} // namespace Quon
