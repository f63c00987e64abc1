#include "harmonet/engine/HostMemory.h"
#include "harmonet/engine/Particle.h"
#include "harmonet/files/SndFile.h"
#include "harmonet/files/SndNodeCache.h"
#include "harmonet/instances/Music.h"
#include "harmonet/instances/Snd2D.h"
#include "harmonet/kernel/SndKernel.h"
#include "harmonet/output/SndChannel.h"
#include "tests/support/OtherThread.h"
#include "tests/support/SoundTest.h"

#include <cstdlib>
#include <functional>
#include <limits>

namespace Quon
{
namespace
{

constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();
constexpr float infinite = std::numeric_limits<float>::infinity();

class PlayInterfaceTest : public SoundTest
{
protected:
    const PString file = WriteWave("a.wav", {2000});
    const PString other = WriteWave("b.wav", {900});
};

class IDCounter : public Snd2D
{
public:
    static void Set(int id) { lastSoundID = id; }
};

TEST_F(PlayInterfaceTest, AGainOutOfRangeIsNotSent)
{
    // A gain above 1 can come from a resource, whose value is passed on unchanged.
    const int id = group->New2DSound(file, nullptr);
    for (const float gain : {1.5F, -1.0F, infinite, -infinite, notANumber}) {
        group->SetSoundGain(id, gain);
        group->SetGain(notANumber);
        EXPECT_EQ(group->GetGain(), 1.0F);
    }
    EXPECT_EQ(group->GetSoundGain(id), 0.0F);
    group->SetSoundGain(id, 1.0F);
    group->StartSound(id, Sound::StartImmediately);
    EXPECT_EQ(TakeLog({"c1 SetGain"}), Lines());
    Find(id)->SetGain(notANumber);
    Find(id)->SetGain(infinite);
    EXPECT_EQ(TakeLog(), (Lines{"c1 SetGain 1", "c1 SetGain 1"}));
}

TEST_F(PlayInterfaceTest, EveryGainMultipliesForTheSoundsThatPlay)
{
    const int flat = Play(file, Sound::StartImmediately);
    EXPECT_NE(Play3D(file, 1.0F), 0);
    Step(40);
    TakeLog();
    group->SetGain(0.5F);
    EXPECT_EQ(TakeLog(), (Lines{"c1 SetGain 0.5", "c2 SetGain 0.5"}));
    SoundSystem::Set2DMainGain(0.5F);
    EXPECT_EQ(TakeLog(), Lines{"c1 SetGain 0.25"});
    SoundSystem::Set3DMainGain(0.25F);
    EXPECT_EQ(TakeLog(), Lines{"c2 SetGain 0.125"});
    group->SetSoundGain(flat, 0.5F);
    EXPECT_EQ(TakeLog(), Lines{"c1 SetGain 0.125"});
    Sound elsewhere;
    elsewhere.SetGain(0.75F);
    EXPECT_EQ(TakeLog(), Lines());
}

TEST_F(PlayInterfaceTest, LowPassFactorsMultiplyForEveryKindOfSoundAndOutlastItsChannel)
{
    struct Row
    {
        float own, parent, all;
        float sent, sentToMusic;
        bool losesChannel = false;
    };
    const Row rows[] = {{1, 1, 1, 1, 1}, {0.5F, 1, 1, 0.5F, 1}, {0.5F, 0.5F, 1, 0.25F, 0.5F},
        {0.5F, 0.5F, 0.5F, 0.125F, 0.25F}, {0.25F, 1, 0.5F, 0.125F, 0.5F, true}, {7, 1, 1, 1, 1},
        {1, -1, 1, 0, 0}};
    const Vector3 points[] = {{3, 0, -3}, {3, 0, 3}};
    Music music;
    const std::function<int()> kinds[] = {[&] { return Play(file, Sound::StartLooping); },
        [&] { return Play3D(file, 3.0F); },
        [&] {
            const int id = group->New3DSound(points, 2, file, nullptr, 0, 0.0F);
            return group->StartSound(id, 0) ? id : 0;
        },
        [&] { return music.Play(file, true) ? -1 : 0; }};
    for (const auto& play : kinds) {
        const int id = play();
        // A line is heard from the first move on.
        microphone->SetPosition({0.0F, 0.0F, 0.01F * static_cast<float>(id)});
        for (const Row& row : rows) {
            SCOPED_TRACE(testing::Message() << "kind " << &play - kinds << ", row " << &row - rows);
            if (row.losesChannel) {
                SoundSystem::PauseAll();
                Step(40);
                EXPECT_TRUE(recording.channels.empty());
            }
            group->SetSoundLowPass(id, row.own);
            group->SetLowPass(row.parent);
            music.SetLowPass(row.parent);
            SoundSystem::SetLowPass(row.all);
            SoundSystem::ResumeAll();
            StepTimes(2, 40);
            ASSERT_EQ(recording.channels.size(), 1U);
            EXPECT_EQ(recording.channels.begin()->second.lowPass, id > 0 ? row.sent : row.sentToMusic);
        }
        SoundSystem::StopAll();
    }
}

TEST_F(PlayInterfaceTest, ValuesThatAreNotFiniteNeverReachTheDriver)
{
    for (const float value : {notANumber, infinite, -infinite}) {
        SCOPED_TRACE(value);
        const int id = Play3D(file, value);
        Step(40);
        EXPECT_EQ(Emulated(), Ids{id});
        group->SetSoundPosition(id, {1.0F, 0.0F, 0.0F});
        StepTimes(2, 40);
        EXPECT_EQ(Playing(), Ids{id});
        group->SetSoundPosition(id, {1.0F, value, 0.0F});
        group->SetSoundOrientation(id, {value, 0.0F, 0.0F, 1.0F});
        Step(40);
        EXPECT_EQ(Emulated(), Ids{id});
        // A listener without a position hears no positional sounds until it has one again.
        const int still = Play3D(file, 2.0F);
        microphone->SetPosition({value, 0.0F, 0.0F});
        StepTimes(2, 40);
        EXPECT_EQ(Playing(), Ids());
        microphone->SetPosition(origin);
        StepTimes(2, 40);
        EXPECT_EQ(Playing(), Ids{still});
        SoundSystem::StopAll();
    }
}

// A delay that stayed would keep the first one out after it has lost its channel.
TEST_F(PlayInterfaceTest, ASoundThatFindsNoChannelCompetesIfItMay)
{
    system.SetMaxAudibleSounds(1);
    const int first = Play(file, Sound::StartNowOrCompete, 0, 500);
    EXPECT_EQ(Playing(), Ids{first});
    EXPECT_EQ(Play(other, Sound::StartImmediately, 5), 0);
    const int second = Play(other, Sound::StartNowOrCompete, 5);
    EXPECT_EQ(Waiting(), Ids{second});
    StepTimes(7, 40);
    EXPECT_EQ(Playing(), Ids{second});
    StepTimes(6, 40);
    StepWithEnd(ChannelOf(second));
    Step(40);
    EXPECT_EQ(Playing(), Ids{first});
    // Without a listener, even a short sound is kept.
    microphone.reset();
    const int placed = group->New3DSound(WriteWave("short.wav", {100}), nullptr);
    EXPECT_TRUE(group->StartSound(placed, Sound::StartNowOrCompete));
    EXPECT_EQ(Waiting(), Ids{placed});
    EXPECT_EQ(Play("none.wav", Sound::StartNowOrCompete), 0);
}

TEST_F(PlayInterfaceTest, UnknownIdsAreIgnored)
{
    const int ended = Play(file);
    group->StopSound(ended);
    TakeLog();
    Particle scene;
    FXChorus chorus{};
    FXEnvReverbSourceProperties source{};
    for (const int id : {0, ended, std::numeric_limits<int>::min()}) {
        SCOPED_TRACE(id);
        group->StopSound(id);
        EXPECT_FALSE(
            group->StartSound(id, 0) || group->FadeOutSound(id, 10) || group->SetFrequency(id, 1000));
        EXPECT_FALSE(group->CatSound(id, file, nullptr) || group->AttachSound(id, &scene, PString()));
        EXPECT_FALSE(group->SetFXChorus(id, &chorus) || group->GetFXChorus(id, &chorus));
        EXPECT_FALSE(group->SetFXEnvReverbSourceProperties(id, &source));
        for (const unsigned long value : {group->GetFrequency(id), group->GetSoundLength(id),
                 group->GetRemainLength(id), group->GetCurrentLength(id)}) {
            EXPECT_EQ(value, 0U);
        }
        EXPECT_EQ(group->GetQueueLength(id), 0);
        EXPECT_EQ(group->GetSoundGain(id), 0.0F);
        EXPECT_EQ(group->GetSoundPriority(id, 7), 0);
        EXPECT_EQ(group->GetSoundPosition(id), origin);
        EXPECT_EQ(group->GetSoundOrientation(id), (Quaternion{0.0F, 0.0F, 0.0F, 1.0F}));
    }
    EXPECT_EQ(TakeLog(), Lines());
}

// A server that starts 100 sounds a second uses up the ids in eight months.
TEST_F(PlayInterfaceTest, IdsBeginAgainAfterTheLastAndSkipThoseInUse)
{
    constexpr int last = std::numeric_limits<int>::max();
    const int first = group->New2DSound(file, nullptr);
    IDCounter::Set(last - 1);
    EXPECT_EQ(group->New2DSound(file, nullptr), last);
    const int afterLast = group->New2DSound(file, nullptr);
    EXPECT_TRUE(afterLast == 1 || (first == 1 && afterLast == 2));
    IDCounter::Set(first - 1);
    EXPECT_EQ(group->New2DSound(file, nullptr), first + 1);
    EXPECT_TRUE(Find(first) && Find(last));
}

TEST_F(PlayInterfaceTest, OnlyASoundWithoutEffectsCanBeStartedForChangesOfItsRate)
{
    const int plain = group->New2DSound(file, nullptr);
    EXPECT_TRUE(group->StartSound(plain, Sound::StartDisableMicFX | ~0x7F));
    EXPECT_EQ(Find(plain)->GetSndFlags(), FlagDisableMicFX | FlagDistLTMax);
    const int withEffect = group->New2DSound(file, nullptr);
    FXGargle gargle{};
    EXPECT_TRUE(group->SetFXGargle(withEffect, &gargle));
    EXPECT_TRUE(group->StartSound(withEffect, Sound::StartChgFrequency));
    EXPECT_EQ(Find(withEffect)->GetSndFlags(), FlagDistLTMax);
}

TEST_F(PlayInterfaceTest, ADriverCanRefuseARate)
{
    const int id = group->New2DSound(file, nullptr);
    EXPECT_TRUE(group->SetFrequency(id, 4000));
    if constexpr (sizeof(unsigned long) > sizeof(std::uint32_t)) {
        EXPECT_FALSE(group->SetFrequency(id, static_cast<unsigned long>(0x100000064)));
    }
    EXPECT_EQ(group->GetFrequency(id), 4000U);
    group->StartSound(id, Sound::StartImmediately);
    recording.reportsFrequency = true;
    EXPECT_TRUE(group->SetFrequency(id, 3000));
    EXPECT_EQ(group->GetFrequency(id), 3000U);
    recording.refuseFrequency = true;
    EXPECT_FALSE(group->SetFrequency(id, 2000));
    EXPECT_EQ(Find(id)->GetNewFrequency(), 3000U);
}

// The lock of the channel must be free after each of the ways out.
TEST_F(PlayInterfaceTest, AFileOfAnotherFormatIsNotAppended)
{
    const int id = Play(file, Sound::StartImmediately | Sound::StartQueued);
    EXPECT_TRUE(group->CatSound(id, other, nullptr));
    EXPECT_FALSE(group->CatSound(id, PString("missing.wav"), nullptr));
    for (const PcmForm& form : {PcmForm{100, 2000}, PcmForm{100, 1000, 2}, PcmForm{100, 1000, 1, 8}}) {
        EXPECT_FALSE(group->CatSound(id, WriteWave("odd.wav", form), nullptr));
        folder.Remove("odd.wav");
    }
    MemoryBlock block({100});
    block.format.formatTag = waveTagAdpcm;
    EXPECT_EQ(group->New2DSound(block.GetData(), block.GetSize(), &block.format), 0);
    EXPECT_FALSE(group->CatSound(id, block.GetData(), block.GetSize(), &block.format));
    EXPECT_EQ(group->GetQueueLength(id), 1);
    EXPECT_EQ(group->GetSoundLength(id), 2900U);
    EXPECT_TRUE(IsFreeForAnotherThread(*Find(id)->GetSndChannel()->GetChanLock()));
}

/// Whether the lock was held at each allocation since it was set.
CriticalSection* watchedLock = nullptr;
bool wasAlwaysHeld = true;

void* AllocateWatched(std::size_t bytes)
{
    wasAlwaysHeld = wasAlwaysHeld && !IsFreeForAnotherThread(*watchedLock);
    return std::malloc(bytes);
}

// The driver's thread reads the queue at the same time.
TEST_F(PlayInterfaceTest, TheQueueChangesUnderTheLockOfTheChannel)
{
    const int id = Play(file, Sound::StartImmediately | Sound::StartQueued);
    EXPECT_EQ(Sound::GetState(id).reason, SoundReason::Won);
    MemoryBlock& block = NewBlock("block", {100});
    watchedLock = Find(id)->GetSndChannel()->GetChanLock();
    HostMemory::SetFunctions(AllocateWatched, std::free);
    EXPECT_TRUE(group->CatSound(id, block.GetData(), block.GetSize(), &block.format));
    EXPECT_TRUE(group->CatSound(id, other, nullptr));
    HostMemory::SetFunctions(nullptr, nullptr);
    EXPECT_TRUE(wasAlwaysHeld);
    bool wasHeld = false;
    observer->react = [&](const Note&) { wasHeld = !IsFreeForAnotherThread(*watchedLock); };
    EXPECT_TRUE(group->FadeOutSound(id, 100));
    EXPECT_TRUE(wasHeld) << "when the block came back";
}

// The setters of what counts at the start; the sound gets a second channel, to which they would apply.
TEST_F(PlayInterfaceTest, SettingsOfTheStartAreIgnoredWhileASoundRuns)
{
    const int id = Play(file);
    Step(40);
    group->SetSoundDelay(id, 5000);
    group->SetSoundFadeIn(id, 100);
    group->SetSoundStartOffset(id, 1500);
    group->SetSoundLoopRegion(id, 100, 200);
    EXPECT_EQ(Find(id)->GetDelay(), 0);
    system.SetMaxAudibleSounds(0);
    StepTimes(6, 40);
    EXPECT_EQ(Emulated(), Ids{id});
    system.SetMaxAudibleSounds(20);
    TakeLog();
    StepTimes(6, 40);
    EXPECT_EQ(TakeLog({"CreateChannel", "c"}).size(), 2U) << "made and played, without a fade-in";
    EXPECT_LT(group->GetCurrentLength(id), 1000U);
    EXPECT_EQ(Find(id)->GetSndFile()->GetPassEnd(), 2000);
}

TEST_F(PlayInterfaceTest, AFailedStartLeavesNothing)
{
    recording.channelLimit = 0;
    EXPECT_EQ(Play(file, Sound::StartImmediately), 0);
    Particle scene;
    scene.SetName(PString("here"));
    EXPECT_EQ(group->Play3DSound(nullptr, PString(), file, nullptr, 0, 0, {}, 0), 0);
    EXPECT_EQ(group->Play3DSound(&scene, PString("elsewhere"), file, nullptr, 0, 0, {}, 0), 0);
    SoundSystem::StopAll();
    // They were deleted without a notification.
    EXPECT_EQ(TakeLog({"begin", "abort", "end"}), Lines());
    EXPECT_NE(group->Play3DSound(&scene, PString("here"), file, nullptr, 0, 0, {}, 0), 0);
}

TEST_F(PlayInterfaceTest, LengthsAreAvailableWithoutASound)
{
    EXPECT_EQ(Sound::CalcSoundLength(other, nullptr), 900U);
    EXPECT_EQ(Sound::CalcSoundLength(PString("missing.wav"), nullptr), 0U);
    EXPECT_EQ(GetRunningKernel()->GetDataCache()->GetCount(), 0U) << "nothing is loaded for it";
    // For a file that is playing it is known, without its queue.
    const int id = Play(file, 0, 0, 500);
    EXPECT_TRUE(group->CatSound(id, other, nullptr));
    folder.Remove("a.wav");
    EXPECT_EQ(Sound::CalcSoundLength(file, nullptr), 2000U);
}

} // namespace
} // namespace Quon
