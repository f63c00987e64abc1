#include "harmonet/definitions/EnvReverbPresets.h"
#include "tests/drivers/FickleMachine.h"
#include "tests/drivers/OfflineRig.h"
#include "tests/drivers/effects/OwnedList.h"
#include "tests/support/Environment.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <thread>

namespace Quon
{
namespace
{

constexpr int rateHz = 44100;

// An output of OpenAL that takes sound at the speed of a sound card and discards it.
const bool isQuietOutput = SetEnvironment("ALSOFT_DRIVERS", "null");

/// The driver on its own thread. Time is the machine's here, so nothing asks how long a thing took: a test
/// waits for what has to happen, for as long as it takes.
///
/// For the second test, game code that starts, steers, appends to, fades and stops sounds at random, also
/// from inside events.
class OpenALLive : public testing::Test
{
protected:
    OpenALLive()
    {
        effects.Add(SndFXEcho, FXEcho{50, 30, 20, 30, 1}).Add(SndFXEnvReverb, fxEnvReverbPaddedCell);
        EXPECT_TRUE(isQuietOutput);
        EXPECT_TRUE(rig.Open(rateHz, 16));
    }

    struct Playing
    {
        FormulaFile* head; ///< The oldest file of the sound that has not been reported as left.
        bool looping;
    };

    int Draw(int below) { return std::uniform_int_distribution<>(0, below - 1)(random); }

    FormulaFile* NewFile(int fileHz)
    {
        const int length = Draw(4) == 0 ? Draw(20) : Draw(fileHz / 3);
        files.push_back(&rig.Make({length, fileHz, 1 + Draw(2)}, Constant(0.01)));
        return files.back();
    }

    void Start()
    {
        FormulaFile* const head = NewFile(Draw(2) ? rateHz : 22050);
        const bool looping = Draw(4) == 0;
        const unsigned int flags = (Draw(2) ? ChanPositional : 0U) | (looping ? ChanLooping : 0U);
        if (SndChannel* const channel = rig.Create(*head, flags, Draw(3) ? SndFXList() : effects.Get())) {
            if (Draw(3) == 0) {
                channel->FadeIn(Draw(200));
            }
            if (Draw(3) == 0) {
                channel->SetStartTime(Draw(50000), Draw(50000) - 10000);
            }
            channel->Play();
            sounds[channel] = {head, looping};
        }
    }

    void Steer(SndChannel* channel, const Playing& sound)
    {
        SndDriver& driver = rig.GetDriver();
        const FXEnvReverbSourceProperties dull = {-Draw(2000), 0, 0, -Draw(2000), 0, 0, 0, -500, 0.5F};
        const auto append = [&] {
            if (!sound.looping) {
                rig.Append(*channel, *sound.head, *NewFile(sound.head->GetSampleFrequency()));
            }
        };
        const std::function<void()> ways[] = {append, append, append, append,
            [&] { channel->SetFrequency(100UL + static_cast<unsigned long>(Draw(99901))); },
            [&] { channel->FadeOut(Draw(100)); },
            [&] { channel->SetLowPass(0.01F * static_cast<float>(Draw(101))); },
            [&] { channel->SetPitch(0.5F + 0.01F * static_cast<float>(Draw(151))); },
            [&] { EXPECT_LE(channel->GetRemainLength(), 1000U); },
            [&] { EXPECT_TRUE(driver.SetFXEnvReverb(Draw(2) ? &fxEnvReverbCave : &fxEnvReverbAlley, 2, 0)); },
            [&] { driver.ResetFXEnvReverb(0); }, [&] { channel->SetFXEnvReverbSourceProperties(&dull); }};
        ways[Draw(static_cast<int>(std::size(ways)))]();
    }

    void DoSomething(const SndChannel* notThis = nullptr)
    {
        if (sounds.empty() || Draw(3) == 0) {
            Start();
            return;
        }
        const auto sound = std::next(sounds.begin(), Draw(static_cast<int>(sounds.size())));
        if (sound->first == notThis) {
            return;
        }
        if (Draw(4) == 0) {
            sound->first->Stop();
            EXPECT_EQ(sound->first->GetSndFile(), sound->second.head);
            Forget(sound);
        }
        else {
            Steer(sound->first, sound->second);
        }
    }

    void Forget(std::map<SndChannel*, Playing>::iterator sound)
    {
        for (SndFile* file = sound->second.head; file; file = file->GetNext()) {
            static_cast<FormulaFile*>(file)->Forbid();
        }
        sounds.erase(sound);
    }

    void OnEvent(const DriverEvent& event)
    {
        EXPECT_EQ(std::this_thread::get_id(), taskThread);
        const auto sound = sounds.find(event.channel);
        ASSERT_NE(sound, sounds.end()) << "an event for a sound that was stopped";
        FormulaFile*& head = sound->second.head;
        if (event.kind == SndFileChanged) {
            EXPECT_EQ(event.oldFile, head);
            head->Forbid();
            head = static_cast<FormulaFile*>(event.newFile);
            ++changes;
        }
        else {
            EXPECT_EQ(rig.GetFileAtEnd(), head);
            Forget(sound);
            ++ends;
        }
        DoSomething(event.channel);
    }

    const std::thread::id taskThread = std::this_thread::get_id();
    FickleMachine machine;
    DriverRig rig{machine.MakeDriver()};
    std::mt19937 random{20262};
    Testing::OwnedList effects;
    std::vector<FormulaFile*> files;
    std::map<SndChannel*, Playing> sounds;
    int changes = 0;
    int ends = 0;
};

TEST_F(OpenALLive, ALongHeldLockDoesNotBlockOtherChannels)
{
    FormulaFile& held = rig.Make({100 * rateHz}, Constant(0.1));
    FormulaFile& other = rig.Make({100 * rateHz}, Constant(0.1));
    SndChannel* const channel = rig.Play(held);
    rig.Play(other);
    ASSERT_TRUE(held.WaitUntilRead(1));
    channel->Lock();
    const long readSoFar = held.GetFramesRead();
    EXPECT_TRUE(other.WaitUntilRead(other.GetFramesRead() + rateHz / 2));
    EXPECT_EQ(held.GetFramesRead(), readSoFar);
    channel->Unlock();
    EXPECT_TRUE(held.WaitUntilRead(readSoFar + rateHz / 4)) << "and it goes on afterwards";
}

TEST_F(OpenALLive, FilesAreNotTouchedAfterTheirEndAndEventsMatchTheirSounds)
{
    FormulaFile& clock = rig.Make({100 * rateHz}, Constant(0.0));
    rig.Play(clock);
    rig.onEvent = [this](const DriverEvent& event) { OnEvent(event); };
    constexpr int steady = 100;
    constexpr int enough = 40;
    for (int update = 0; (update < 250 || changes < enough || ends < enough) && !HasFailure(); ++update) {
        // At the pace of the sound: some 15 ms an update.
        ASSERT_TRUE(clock.WaitUntilRead(clock.GetFramesRead() + 1));
        machine.isThere = update < steady || update % 16 != 0;
        if (update > steady && update % 8 == 0) {
            machine.hasGoneOnce = true;
        }
        DoSomething();
        rig.Step(40, [this] {
            for (int i = Draw(4); i > 0; --i) {
                DoSomething();
            }
        });
    }
    EXPECT_GT(machine.timesOpened, 2);
    rig.Close();
    for (const FormulaFile* const file : files) {
        EXPECT_EQ(file->GetForbiddenTouches(), 0);
    }
}

} // namespace
} // namespace Quon
