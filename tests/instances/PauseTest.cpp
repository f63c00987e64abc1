#include "harmonet/instances/Music.h"
#include "harmonet/instances/SndBase.h"
#include "harmonet/kernel/SndKernel.h"
#include "tests/support/SoundTest.h"

#include <functional>

namespace Quon
{

namespace
{

class PauseTest : public SoundTest
{
protected:
    int CountPaused() const { return GetRunningKernel()->GetList(ListID::Paused).GetCount(); }

    const PString file = WriteWave("a.wav", {2000});
    const PString brief = WriteWave("b.wav", {300});
    Music music;
};

TEST_F(PauseTest, ThePausedSoundsChannelIsFreeForOthers)
{
    system.SetMaxAudibleSounds(1);
    const int paused = Play(file, 0, 1);
    Step(40);
    group->PauseSound(paused);
    Step(40);
    const int other = Play(file, 0, 0);
    Step(40);
    EXPECT_EQ(Playing(), Ids{other});
    // The other one keeps its channel for 200 ms.
    group->ResumeSound(paused);
    Step(40);
    EXPECT_EQ(Playing(), Ids{other});
    StepTimes(6, 40);
    EXPECT_EQ(Playing(), Ids{paused});
}

TEST_F(PauseTest, PausesOfDifferentScopesAddUp)
{
    const int id = Play(file, Sound::StartImmediately);
    const std::function<void(bool)> scopes[] = {[&](bool on) { on ? group->Pause() : group->Resume(); },
        [&](bool on) { on ? group->PauseSound(id) : group->ResumeSound(id); },
        [](bool on) { on ? SoundSystem::PauseAll() : SoundSystem::ResumeAll(); }};
    for (const auto& first : scopes) {
        for (const auto& second : scopes) {
            first(true);
            Step(40);
            second(true);
            Step(40);
            EXPECT_EQ(CountPaused(), 1);
            first(false);
            Step(40);
            EXPECT_EQ(CountPaused(), &first == &second ? 0 : 1);
            second(false);
            Step(40);
            EXPECT_EQ(Playing(), Ids{id});
        }
    }
}

TEST_F(PauseTest, SoundsStartedDuringAPauseWaitForItsEnd)
{
    const int before = Play(file);
    group->Pause();
    const int id = Play(file, Sound::StartImmediately, 0, 0);
    const int delayed = Play(file, 0, 0, 60);
    music.Pause();
    EXPECT_FALSE(music.Play("none", true));
    EXPECT_TRUE(music.Play(file, true));
    EXPECT_FALSE(music.Play(brief, true));
    StepTimes(5, 40);
    EXPECT_EQ(Playing(), Ids());
    EXPECT_EQ(CountPaused(), 4);
    group->Resume();
    music.Resume();
    // A pause that no update has seen has no effect.
    group->Pause();
    group->Resume();
    Step(40);
    EXPECT_EQ(Playing().size(), 3U);
    EXPECT_NE(ChannelOf(before) * ChannelOf(id), 0);
    EXPECT_EQ(Waiting(), Ids{delayed});
    StepTimes(2, 40);
    EXPECT_NE(ChannelOf(delayed), 0);
    // A piece that is lost during a pause leaves nothing.
    music.Pause();
    Step(40);
    EXPECT_FALSE(music.CrossFade("none", 1000, true));
    EXPECT_EQ(CountPaused(), 0);
}

// The fixture detects leaks.
TEST_F(PauseTest, PausedSoundsCanBeEnded)
{
    const std::function<void(int)> ways[] = {[&](int id) { group->StopSound(id); },
        [&](int id) { group->DeleteSound(id); }, [&](int id) { EXPECT_FALSE(group->FadeOutSound(id, 100)); },
        [](int) { SoundSystem::StopAll(); }, [](int) { SoundSystem::StopAll2D(); }};
    for (const auto& end : ways) {
        MemoryBlock& block = NewBlock("block", {2000});
        const int id =
            group->Play2DSound(block.GetData(), block.GetSize(), &block.format, Sound::StartQueued, 0, 0);
        group->CatSound(id, file, nullptr);
        Step(40);
        group->PauseSound(id);
        Step(40);
        EXPECT_EQ(CountPaused(), 1);
        end(id);
        EXPECT_EQ(Find(id), nullptr);
        EXPECT_EQ(CountPaused(), 0);
        Step(40);
    }
}

TEST_F(PauseTest, ALineIsPausedWithItsSources)
{
    const Vector3 points[] = {{0.0F, 0.0F, 5.0F}, {100.0F, 0.0F, 5.0F}};
    const int id = group->New3DSound(points, 2, file, nullptr, 0, 0.0F);
    group->SetSoundMinMaxDistance(id, 10.0F, 100.0F, false);
    group->StartSound(id, 0);
    StepTimes(2, 40);
    EXPECT_EQ(Playing().size(), 1U);
    group->PauseSound(id);
    Step(40);
    EXPECT_EQ(CountPaused(), 2);
    microphone->SetPosition({50.0F, 0.0F, 0.0F});
    StepTimes(3, 40);
    group->ResumeSound(id);
    Step(40);
    EXPECT_EQ(Playing().size(), 1U);
    Vector3 place;
    ASSERT_EQ(group->GetSoundPlaces(id, &place, 1), 1);
    EXPECT_EQ(place.x, 50.0F);
    EXPECT_EQ(Find(Playing()[0])->GetDistSqr(), 25.0F);
}

// Each notification pauses or resumes the group or everything.
TEST_F(PauseTest, HandlersMayPauseAndResume)
{
    int calls = 0;
    observer->react = [&](const Note& note) {
        ++calls;
        calls % 2 ? group->Pause() : group->Resume();
        calls % 3 ? SoundSystem::ResumeAll() : SoundSystem::PauseAll();
        if (calls < 200) {
            Play(calls % 5 ? file : brief, calls % 7 ? 0 : Sound::StartImmediately, calls % 11);
        }
        if (calls % 4 == 0) {
            group->StopSound(note.id - 1);
        }
    };
    system.SetMaxAudibleSounds(3);
    Play(file);
    for (int i = 0; i < 300; ++i) {
        Step(40);
        if (i % 10 == 0) {
            group->Resume();
            SoundSystem::ResumeAll();
            Play(brief);
        }
    }
    EXPECT_GT(calls, 100);
}

} // namespace

} // namespace Quon
