// Pieces of music: what the driver hears of them.

#include "harmonet/instances/Music.h"
#include "harmonet/instances/SndBase.h"
#include "tests/instances/WithResources.h"
#include "tests/support/SoundTest.h"

#include <algorithm>
#include <limits>

namespace Quon
{

namespace
{

/// Three pieces of five seconds, "a", "b" and "c", and a handle.
class MusicTest : public SoundTest
{
protected:
    MusicTest()
    {
        for (const char* name : {"a", "b", "c"})
            WriteWave(name, {5000});
    }

    /// The instance of the piece that was started last; nothing else makes sounds here.
    int LastId() const
    {
        int last = 0;
        for (const Ids& ids : {Playing(), Emulated()}) {
            for (const int id : ids)
                last = std::max(last, id);
        }
        return last;
    }

    Music music;
};

// With a fade still on its way, the new piece's end leaves the instance with a file that is at its end.
TEST_F(MusicTest, ANewPieceCanEndBeforeTheFadeOfTheOldOneAndAThirdBegin)
{
    music.Play("a", true);
    music.CrossFade("b", 10000, false);
    const int id = LastId();
    StepWithEnd(2);
    ASSERT_EQ(Playing(), (Ids{id}));
    TakeLog();
    EXPECT_TRUE(music.Play("c", false));
    EXPECT_EQ(TakeLog(), (Lines{"c1 SetGain 1", "CreateChannel c3 0 c@0 fx", "c3 Play"}));
    EXPECT_EQ(Playing(), (Ids{id}));
    Step(40);
}

TEST_F(MusicTest, AGainIsClampedAndKeptWithoutAPiece)
{
    const std::pair<float, float> gains[] = {
        {2.0F, 1.0F}, {-0.5F, 0.0F}, {0.75F, 0.75F}, {std::numeric_limits<float>::quiet_NaN(), 0.75F}};
    for (const auto& [given, kept] : gains) {
        music.SetGain(given);
        EXPECT_EQ(music.GetGain(), kept) << given;
    }
    system.Done();
    music.SetGain(0.5F);
    EXPECT_EQ(music.GetGain(), 0.5F);
}

TEST_F(MusicTest, TheKernelEndsPiecesAndTheHandleMayOutliveIt)
{
    music.Play("a", true);
    SoundSystem::StopAll2D();
    EXPECT_EQ(Playing().size(), 1U);
    SoundSystem::StopAll();
    EXPECT_EQ(Playing().size(), 0U);
    music.Play("a", true);
    system.Done();
    EXPECT_FALSE(music.Play("a", true));
    EXPECT_FALSE(music.FadeOut(1));
    EXPECT_FALSE(music.CrossFade("a", 1, true));
    EXPECT_EQ(music.GetRemainLength(), 0U);
    music.Stop();
}

// A piece looks for its gain in the handle that started it, which can be assigned another and go.
TEST_F(MusicTest, APieceWhoseHandleWasAssignedAnotherPlaysOn)
{
    auto handle = std::make_unique<Music>();
    handle->SetGain(0.5F);
    handle->Play("a", true);
    const int left = LastId();
    music.Play("b", true);
    *handle = music;
    EXPECT_EQ(handle->GetRemainLength(), unknownLength);
    handle.reset();
    EXPECT_EQ(Playing(), (Ids{left}));
    TakeLog();
    SoundSystem::SetMusicMainGain(0.25F);
    EXPECT_EQ(TakeLog(), (Lines{"c1 SetGain 0.25"}));
    SoundSystem::SetMusicMainGain(1.0F);
}

/// Pieces that are named by resources.
class MusicResources : public WithResources<MusicTest>
{
protected:
    MusicResources()
    {
        folder.Write("theme.sound",
            "*SOUND_DEFINITION\n{\n*FILE a\n*GAIN 0.5\n*LOOPING true\n*DELAY 900\n*FX_ECHO\n*FX_GARGLE\n}\n");
        folder.Write("once.sound", "*SOUND_DEFINITION { *FILE b\n*FREQUENCY 2000 }");
    }
};

TEST_F(MusicResources, ADefinitionGivesFileGainLoopAndEffectsAndNothingElse)
{
    EXPECT_TRUE(music.Play("theme.sound", &database, false));
    EXPECT_EQ(TakeLog(), (Lines{"CreateChannel c1 2 a@0 fx 3 7", "c1 SetGain 0.5", "c1 Play"}));
    EXPECT_EQ(Find(LastId())->GetSubstName(), PString("sounds"));
    EXPECT_EQ(Find(LastId())->GetDelay(), 0);
    music.Stop();
    EXPECT_TRUE(music.FadeIn("once.sound", &database, 70, false));
    EXPECT_EQ(TakeLog(), (Lines{"c1 Stop", "CreateChannel c2 0 b@0 fx", "c2 FadeIn 70", "c2 Play"}));
}

// The new piece's own gain is set before it has its channel, and so reaches the one that fades out as well.
TEST_F(MusicResources, ACrossFadeToADefinitionSetsItsGainOnBothChannels)
{
    EXPECT_TRUE(music.Play("b", false));
    TakeLog();
    EXPECT_TRUE(music.CrossFade("theme.sound", &database, 300, false));
    EXPECT_EQ(TakeLog(),
        (Lines{"c1 FadeOut 300", "c1 SetGain 0.5", "CreateChannel c2 2 a@0 fx 3 7", "c2 FadeIn 300",
            "c2 SetGain 0.5", "c2 Play"}));
    // A block of effects takes the place of the one before; a plain file leaves gain and effects as they are.
    EXPECT_TRUE(music.CrossFade("theme.sound", &database, 300, false));
    TakeLog();
    EXPECT_TRUE(music.CrossFade("c", 300, false));
    EXPECT_EQ(TakeLog({"CreateChannel", "c4"}),
        (Lines{"CreateChannel c4 0 c@0 fx 3 7", "c4 FadeIn 300", "c4 SetGain 0.5", "c4 Play"}));
}

TEST_F(MusicResources, AResourceThatCannotBeHadEndsAFadingPiece)
{
    EXPECT_FALSE(music.Play("missing.sound", &database, false));
    EXPECT_FALSE(music.Play("missing", false));
    folder.Write("bad.sound", "*SOUND_DEFINITION { *GAIN 1 }");
    music.Play("a", true);
    TakeLog();
    EXPECT_FALSE(music.CrossFade("bad.sound", &database, 300, true));
    EXPECT_EQ(TakeLog(), (Lines{"c1 FadeOut 300", "c1 Stop"}));
    EXPECT_TRUE(Playing().empty());
}

} // namespace

} // namespace Quon
