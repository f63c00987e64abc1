#include "harmonet/definitions/EnvReverbPresets.h"
#include "tests/drivers/FickleMachine.h"
#include "tests/drivers/FormulaFile.h"
#include "tests/drivers/OfflineRig.h"
#include "tests/drivers/effects/OwnedList.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <map>
#include <random>
#include <thread>

namespace Quon
{
namespace
{

constexpr int rateHz = 44100;

// An output of OpenAL that takes sound at the speed of a sound card and plays it to nobody.
const bool isQuietOutput = setenv("ALSOFT_DRIVERS", "null", 1) == 0;

/// The driver on its own thread, with updates as fast as they go. Time is the machine's here, so nothing asks
/// how long a thing took: a test waits for what has to happen, for as long as it takes.
/// The files must outlive it.
class LiveRig : public DriverRig
{
public:
    explicit LiveRig(int maxChannels = 16)
        : DriverRig("HarmonetOpenAL")
    {
        EXPECT_TRUE(isQuietOutput);
        EXPECT_TRUE(Open(rateHz, maxChannels));
    }

    /// On a machine of the test's own.
    explicit LiveRig(FickleMachine& machine)
        : DriverRig(machine.MakeDriver())
    {
        EXPECT_TRUE(isQuietOutput);
        EXPECT_TRUE(Open(rateHz, 16));
    }

    /// Updates until the condition holds. False if it takes an age.
    bool StepUntil(const std::function<bool()>& condition)
    {
        const auto giveUp = std::chrono::steady_clock::now() + std::chrono::minutes(2);
        while (!condition()) {
            if (std::chrono::steady_clock::now() > giveUp) {
                return false;
            }
            Step(40);
            std::this_thread::yield();
        }
        return true;
    }
};

TEST(OpenALLive, ASoundIsReadToItsEndWithoutAnyUpdateAndItsEndIsReportedByTheNextOne)
{
    const auto first = MakeFile({rateHz / 4, rateHz}, Constant(0.1));
    const auto second = MakeFile({rateHz / 4, rateHz}, Constant(0.1));
    LiveRig rig;
    first->Add(second.get());
    SndChannel* const channel = rig.Play(*first);
    ASSERT_TRUE(second->WaitUntilRead(rateHz / 4));
    EXPECT_TRUE(rig.TakeEvents().empty());
    const std::thread::id taskThread = std::this_thread::get_id();
    std::vector<int> kinds;
    rig.onEvent = [&](const DriverEvent& event) {
        EXPECT_EQ(event.channel, channel);
        EXPECT_EQ(std::this_thread::get_id(), taskThread);
        kinds.push_back(event.kind);
    };
    ASSERT_TRUE(rig.StepUntil([&] { return kinds.size() >= 2; }));
    EXPECT_EQ(kinds, (std::vector<int>{SndFileChanged, SndChannelEnded}));
}

TEST(OpenALLive, AFadeOutEndsByItselfAndLeavesItsFileAlone)
{
    const auto file = MakeFile({rateHz, rateHz}, Constant(0.1));
    const auto other = MakeFile({rateHz, rateHz}, Constant(0.1));
    LiveRig rig;
    SndChannel* const channel = rig.Play(*file, ChanLooping);
    ASSERT_TRUE(file->WaitUntilRead(rateHz / 4));
    channel->FadeOut(100);
    bool hasEnded = false;
    rig.onEvent = [&](const DriverEvent& event) {
        hasEnded = event.kind == SndChannelEnded;
        file->Forbid();
    };
    ASSERT_TRUE(rig.StepUntil([&] { return hasEnded; }));
    rig.Play(*other);
    ASSERT_TRUE(other->WaitUntilRead(rateHz / 2));
    EXPECT_EQ(file->GetForbiddenTouches(), 0);
}

TEST(OpenALLive, RemainingLengthOnlyFallsWhileASoundPlays)
{
    const auto file = MakeFile({rateHz / 2, rateHz}, Constant(0.1));
    LiveRig rig;
    SndChannel* const channel = rig.Play(*file);
    unsigned long last = channel->GetRemainLength();
    EXPECT_EQ(last, 500u);
    bool hasEnded = false;
    rig.onEvent = [&](const DriverEvent&) { hasEnded = true; };
    EXPECT_TRUE(rig.StepUntil([&] {
        const unsigned long now = channel->GetRemainLength();
        EXPECT_LE(now, last);
        last = now;
        return hasEnded || testing::Test::HasFailure();
    }));
}

TEST(OpenALLive, AChannelWhoseLockIsHeldForLongDoesNotHoldUpTheOthers)
{
    const auto held = MakeFile({100 * rateHz, rateHz}, Constant(0.1));
    const auto other = MakeFile({100 * rateHz, rateHz}, Constant(0.1));
    LiveRig rig;
    SndChannel* const channel = rig.Play(*held);
    rig.Play(*other);
    ASSERT_TRUE(held->WaitUntilRead(1));
    channel->Lock();
    const long readSoFar = held->GetFramesRead();
    EXPECT_TRUE(other->WaitUntilRead(other->GetFramesRead() + rateHz / 2));
    EXPECT_EQ(held->GetFramesRead(), readSoFar);
    channel->Unlock();
    EXPECT_TRUE(held->WaitUntilRead(readSoFar + rateHz / 4)) << "and it goes on afterwards";
}

TEST(OpenALLive, DeletingTheDriverWhileSoundsPlayLeavesTheirFilesAloneFromThenOn)
{
    std::vector<std::unique_ptr<FormulaFile>> files;
    for (int round = 0; round < 3; ++round) {
        LiveRig rig;
        for (int i = 0; i < 10; ++i) {
            files.push_back(MakeFile({rateHz, rateHz}, Constant(0.1)));
            rig.Play(*files.back(), ChanLooping);
        }
        ASSERT_TRUE(files.back()->WaitUntilRead(1));
        rig.Close();
        for (const auto& file : files) {
            file->Forbid();
        }
    }
    const auto clock = MakeFile({rateHz, rateHz}, Constant(0.1));
    LiveRig next;
    next.Play(*clock);
    ASSERT_TRUE(clock->WaitUntilRead(rateHz / 4));
    for (const auto& file : files) {
        EXPECT_EQ(file->GetForbiddenTouches(), 0);
    }
}

/// Game code that starts, steers, appends to, fades and stops sounds at random, also from inside events,
/// while the driver's thread plays them.
class RandomGame : public testing::Test
{
protected:
    /// Plays for long enough; `trouble` may make some before each update.
    void Run(const std::function<void(int update)>& trouble);

    struct Playing
    {
        FormulaFile* head; ///< The oldest file of the sound that has not been reported as left.
        bool looping;
    };

    RandomGame()
    {
        effects.Add(SndFXEcho, FXEcho{50, 30, 20, 30, 1}).Add(SndFXEnvReverb, fxEnvReverbPaddedCell);
    }

    int Draw(int below) { return std::uniform_int_distribution<>(0, below - 1)(random); }

    FormulaFile* NewFile(int fileHz)
    {
        files.push_back(
            MakeFile({Draw(4) == 0 ? Draw(20) : Draw(fileHz / 3), fileHz, 1 + Draw(2)}, Constant(0.01)));
        return files.back().get();
    }

    void Start()
    {
        const int fileHz = Draw(2) ? rateHz : 22050;
        FormulaFile* const head = NewFile(fileHz);
        const bool looping = Draw(4) == 0;
        SndChannel* const channel =
            rig.Create(*head, (Draw(2) ? ChanPositional : 0u) | (looping ? ChanLooping : 0u),
                Draw(3) == 0 ? effects.Get() : SndFXList());
        if (channel) {
            if (Draw(3) == 0) {
                channel->FadeIn(Draw(200));
            }
            channel->Play();
            sounds[channel] = {head, looping};
        }
    }

    void ChangeRoom()
    {
        if (Draw(4) == 0) {
            rig.GetDriver().ResetFXEnvReverb(0);
        }
        else {
            EXPECT_TRUE(rig.GetDriver().SetFXEnvReverb(Draw(2) ? &fxEnvReverbCave : &fxEnvReverbAlley, 2, 0));
        }
    }

    static void ForbidChain(SndFile* file)
    {
        for (; file; file = file->GetNext()) {
            static_cast<FormulaFile*>(file)->Forbid();
        }
    }

    void Steer(SndChannel* channel, const Playing& sound)
    {
        switch (Draw(9)) {
        case 0:
            channel->SetFrequency(static_cast<unsigned long>(100 + Draw(99901)));
            break;
        case 1:
            channel->FadeOut(Draw(100));
            break;
        case 2:
            channel->SetGain(0.01f * static_cast<float>(Draw(100)));
            channel->SetPosition({static_cast<float>(Draw(20)), 0, 1});
            channel->SetMinMaxDistance(1, 10, Draw(2) == 0);
            break;
        case 3:
            rig.GetDriver().SetListenerPosition({static_cast<float>(Draw(20)), 0, 1});
            break;
        case 4:
            EXPECT_LE(channel->GetRemainLength(), 1000u);
            break;
        case 5:
            ChangeRoom();
            break;
        case 6: {
            const FXEnvReverbSourceProperties dull = {-Draw(2000), 0, 0, -Draw(2000), 0, 0, 0, -500, 0.5f};
            channel->SetFXEnvReverbSourceProperties(&dull);
            break;
        }
        default:
            if (!sound.looping) {
                rig.Append(*channel, *sound.head, *NewFile(sound.head->GetSampleFrequency()));
            }
        }
    }

    void DoSomething(const SndChannel* notThis = nullptr)
    {
        if (sounds.empty() || Draw(3) == 0) {
            Start();
            return;
        }
        auto sound = std::next(sounds.begin(), Draw(static_cast<int>(sounds.size())));
        if (sound->first == notThis) {
            return;
        }
        if (Draw(4) == 0) {
            sound->first->Stop();
            EXPECT_EQ(sound->first->GetSndFile(), sound->second.head);
            ForbidChain(sound->second.head);
            sounds.erase(sound);
        }
        else {
            Steer(sound->first, sound->second);
        }
    }

    void OnEvent(const DriverEvent& event)
    {
        ASSERT_EQ(sounds.count(event.channel), 1u) << "an event for a sound that was stopped";
        Playing& sound = sounds[event.channel];
        if (event.kind == SndFileChanged) {
            EXPECT_EQ(event.oldFile, sound.head);
            sound.head->Forbid();
            sound.head = static_cast<FormulaFile*>(event.newFile);
            ++changes;
        }
        else {
            EXPECT_EQ(rig.GetFileAtEnd(), sound.head);
            ForbidChain(sound.head);
            sounds.erase(event.channel);
            ++ends;
        }
        DoSomething(event.channel);
    }

    std::mt19937 random{20262};
    Testing::OwnedList effects;
    std::vector<std::unique_ptr<FormulaFile>> files;
    std::map<SndChannel*, Playing> sounds;
    int changes = 0;
    int ends = 0;
    FickleMachine machine;
    LiveRig rig{machine};
};

void RandomGame::Run(const std::function<void(int update)>& trouble)
{
    const auto clock = MakeFile({100 * rateHz, rateHz}, Constant(0.0));
    rig.Play(*clock);
    rig.onEvent = [this](const DriverEvent& event) { OnEvent(event); };
    const int enough = 25;
    for (int update = 0; (update < 150 || changes < enough || ends < enough) && !HasFailure(); ++update) {
        // At the pace of the sound: some 15 ms an update.
        ASSERT_TRUE(clock->WaitUntilRead(clock->GetFramesRead() + 1));
        trouble(update);
        DoSomething();
        rig.Step(40, [this] {
            for (int i = Draw(4); i > 0; --i) {
                DoSomething();
            }
        });
    }
    rig.Close();
    for (const auto& file : files) {
        EXPECT_EQ(file->GetForbiddenTouches(), 0);
    }
}

TEST_F(RandomGame, NothingIsTouchedAfterItsEndAndEveryEventFitsItsSound)
{
    Run([](int) {});
    EXPECT_EQ(machine.timesOpened, 1);
}

TEST_F(RandomGame, TheSameHoldsWhileTheDeviceComesAndGoes)
{
    Run([this](int update) {
        if (update % 8 == 0) {
            machine.hasGoneOnce = true;
        }
        machine.isThere = update % 16 != 0;
    });
    EXPECT_GT(machine.timesOpened, 2);
}

} // namespace
} // namespace Quon
