// Pieces of music: what the driver hears of them.

#include "harmonet/instances/Music.h"
#include "harmonet/engine/PluginRegistry.h"
#include "harmonet/engine/ResourceDatabase.h"
#include "harmonet/instances/SndBase.h"
#include "harmonet/kernel/QuonGetPlugins.h"
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

TEST_F(MusicTest, APieceStartsAtOnceInTheOrderOfAChannelsStart)
{
    music.SetGain(0.5F);
    EXPECT_TRUE(music.FadeIn("a", 300, true));
    EXPECT_EQ(TakeLog(), (Lines{"CreateChannel c1 2 a@0 fx", "c1 FadeIn 300", "c1 SetGain 0.5", "c1 Play"}));
    EXPECT_EQ(
        Find(LastId())->GetSndFlags(), FlagMusic | FlagDistLTMax | FlagFadeIn | FlagLooping | FlagPlaying);
    EXPECT_EQ(music.GetRemainLength(), unknownLength);
}

TEST_F(MusicTest, APlainStartHasNeitherFadeNorGain)
{
    EXPECT_TRUE(music.Play("a", false));
    EXPECT_EQ(TakeLog(), (Lines{"CreateChannel c1 0 a@0 fx", "c1 Play"}));
    music.Stop();
    EXPECT_TRUE(music.FadeIn("a", -5, false));
    EXPECT_EQ(TakeLog(), (Lines{"c1 Stop", "CreateChannel c2 0 a@0 fx", "c2 Play"}));
    EXPECT_EQ(music.GetRemainLength(), 5000U);
}

TEST_F(MusicTest, APieceThatPlaysIsLeftAlone)
{
    EXPECT_TRUE(music.Play("a", false));
    TakeLog();
    EXPECT_FALSE(music.Play("b", true));
    EXPECT_FALSE(music.FadeIn("b", 100, true));
    EXPECT_EQ(TakeLog(), Lines());
    EXPECT_EQ(Find(LastId())->GetFileName(), PString("a"));
    EXPECT_FALSE(Find(LastId())->IsLooping());
}

TEST_F(MusicTest, ACrossFadeRunsOnTwoChannelsOfOneInstance)
{
    music.Play("a", true);
    const int id = LastId();
    TakeLog();
    EXPECT_TRUE(music.CrossFade("b", 400, false));
    EXPECT_EQ(TakeLog(),
        (Lines{"c1 FadeOut 400", "c1 SetGain 1", "CreateChannel c2 0 b@0 fx", "c2 FadeIn 400", "c2 Play"}));
    EXPECT_EQ(Playing(), (Ids{id}));
    EXPECT_EQ(music.GetRemainLength(), 5000U);
    // The end of the fade closes the old file alone; then the new piece ends, and with it the instance.
    StepWithEnd(1);
    EXPECT_EQ(Playing(), (Ids{id}));
    EXPECT_EQ(ChannelOf(id), 2);
    EXPECT_EQ(Find(id)->GetFadeOutChannel(), nullptr);
    StepWithEnd(2);
    EXPECT_EQ(Find(id), nullptr);
    EXPECT_EQ(TakeLog({"begin", "abort", "end", "c1", "c2"}), Lines());
}

TEST_F(MusicTest, ASecondCrossFadeCutsTheFirstFadeOff)
{
    music.Play("a", true);
    music.CrossFade("b", 400, true);
    TakeLog();
    EXPECT_TRUE(music.CrossFade("c", 500, true));
    EXPECT_EQ(TakeLog(),
        (Lines{"c1 Stop", "c2 FadeOut 500", "c2 SetGain 1", "CreateChannel c3 2 c@0 fx", "c3 FadeIn 500",
            "c3 Play"}));
    EXPECT_EQ(recording.channels.size(), 2U);
}

TEST_F(MusicTest, WithoutAPieceACrossFadeIsAFadeIn)
{
    EXPECT_TRUE(music.CrossFade("a", 200, false));
    EXPECT_EQ(TakeLog(), (Lines{"CreateChannel c1 0 a@0 fx", "c1 FadeIn 200", "c1 Play"}));
}

TEST_F(MusicTest, ANewPieceStartsBesideOneThatFadesOut)
{
    music.Play("a", false);
    EXPECT_TRUE(music.FadeOut(400));
    TakeLog();
    EXPECT_TRUE(music.Play("b", false));
    EXPECT_EQ(TakeLog(), (Lines{"c1 SetGain 1", "CreateChannel c2 0 b@0 fx", "c2 Play"}));
    EXPECT_EQ(Playing().size(), 1U);
}

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

TEST_F(MusicTest, AGainReachesTheNewPieceAloneDuringACrossFade)
{
    music.Play("a", true);
    music.CrossFade("b", 400, true);
    TakeLog();
    music.SetGain(0.25F);
    EXPECT_EQ(TakeLog(), (Lines{"c2 SetGain 0.25"}));
    SoundSystem::SetMusicMainGain(0.5F);
    EXPECT_EQ(TakeLog(), (Lines{"c2 SetGain 0.125"}));
}

TEST_F(MusicTest, AGainIsClampedAndKeptWithoutAPiece)
{
    struct GainRow
    {
        float given;
        float kept;
    };
    constexpr GainRow rows[] = {{2.0F, 1.0F}, {-0.5F, 0.0F}, {0.75F, 0.75F},
        {std::numeric_limits<float>::quiet_NaN(), 0.75F}, {std::numeric_limits<float>::infinity(), 1.0F}};
    for (const GainRow& row : rows) {
        music.SetGain(row.given);
        EXPECT_EQ(music.GetGain(), row.kept) << row.given;
    }
    system.Done();
    music.SetGain(0.5F);
    EXPECT_EQ(music.GetGain(), 0.5F);
}

TEST_F(MusicTest, MusicPassesTheLimitOfAudibleSounds)
{
    system.SetMaxAudibleSounds(0);
    EXPECT_TRUE(music.Play("a", true));
    EXPECT_EQ(recording.channels.size(), 1U);
}

TEST_F(MusicTest, AStaleHandleDoesNothingUntilTheNextPiece)
{
    music.Play("a", false);
    const int id = LastId();
    StepWithEnd(1);
    ASSERT_EQ(Find(id), nullptr);
    TakeLog();
    EXPECT_FALSE(music.FadeOut(100));
    EXPECT_EQ(music.GetRemainLength(), 0U);
    music.Stop();
    EXPECT_EQ(TakeLog(), Lines());
    EXPECT_TRUE(music.Play("b", false));
    EXPECT_GT(LastId(), id);
}

TEST_F(MusicTest, APieceThatCannotBeHadEndsTheOldOneInACrossFade)
{
    struct FailureRow
    {
        const char* name;
        const char* file;
        int channelLimit;
        Lines log;
    };
    const FailureRow rows[] = {
        {"no file", "missing", 100, {"c1 FadeOut 400", "c1 SetGain 1", "c1 Stop"}},
        {"no channel", "b", 1,
            {"c1 FadeOut 400", "c1 SetGain 1", "CreateChannel refused 0 b@0 fx", "c1 Stop"}},
    };
    for (const FailureRow& row : rows) {
        SCOPED_TRACE(row.name);
        recording.channelLimit = 100;
        music.Play("a", true);
        Lines expected = row.log;
        const std::string channel = 'c' + std::to_string(recording.channels.begin()->first);
        for (std::string& line : expected) {
            if (line.starts_with("c1"))
                line.replace(0, 2, channel);
        }
        recording.channelLimit = row.channelLimit;
        TakeLog();
        EXPECT_FALSE(music.CrossFade(row.file, 400, false));
        EXPECT_EQ(TakeLog(), expected);
        EXPECT_TRUE(Playing().empty());
        EXPECT_EQ(music.GetRemainLength(), 0U);
    }
}

// A piece that has lost its channel runs on unheard. The new one is to be heard, and the instance to stand on
// one list.
TEST_F(MusicTest, APieceThatIsEmulatedIsGivenUpForTheNewOne)
{
    struct GiveUpRow
    {
        const char* name;
        std::function<bool()> start;
        bool isSameInstance;
    };
    const GiveUpRow rows[] = {
        {"play", [this] { return music.Play("b", false); }, true},
        {"fade in", [this] { return music.FadeIn("b", 100, false); }, true},
        {"cross-fade", [this] { return music.CrossFade("b", 100, false); }, false},
    };
    for (const GiveUpRow& row : rows) {
        SCOPED_TRACE(row.name);
        music.Play("a", true);
        const int id = LastId();
        Step(200);
        system.SetMaxAudibleSounds(0);
        Step(200);
        ASSERT_EQ(Emulated(), (Ids{id}));
        EXPECT_TRUE(row.start());
        const int newId = LastId();
        EXPECT_EQ(newId == id, row.isSameInstance);
        EXPECT_EQ(Emulated(), Ids());
        EXPECT_EQ(Playing(), (Ids{newId}));
        EXPECT_EQ(Find(newId)->GetFileName(), PString("b"));
        EXPECT_EQ(music.GetRemainLength(), 5000U);
        Step(40);
        EXPECT_EQ(music.GetRemainLength(), 5000U);
        music.Stop();
        system.SetMaxAudibleSounds(20);
    }
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

TEST_F(MusicTest, APieceEndsWithItsHandle)
{
    auto handle = std::make_unique<Music>();
    handle->Play("a", true);
    handle.reset();
    EXPECT_TRUE(Playing().empty());
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

TEST_F(MusicTest, TwoHandlesSteerOnePieceAndTheFirstGivesItsGain)
{
    music.Play("a", true);
    Music copy = music;
    TakeLog();
    copy.SetGain(0.5F);
    music.SetGain(0.25F);
    EXPECT_EQ(TakeLog(), (Lines{"c1 SetGain 1", "c1 SetGain 0.25"}));
    EXPECT_TRUE(copy.FadeOut(10));
}

/// Pieces that are named by resources.
class MusicResources : public MusicTest
{
protected:
    MusicResources()
    {
        QuonGetPlugins();
        EXPECT_TRUE(database.AddFolder("music", folder.GetPath().c_str()));
        folder.Write("theme.sound",
            "*SOUND_DEFINITION\n{\n*FILE a\n*GAIN 0.5\n*LOOPING true\n*DELAY 900\n*FX_ECHO\n*FX_GARGLE\n}\n");
        folder.Write("once.sound", "*SOUND_DEFINITION { *FILE b\n*FREQUENCY 2000 }");
    }
    ~MusicResources() override
    {
        music.Stop();
        group.reset();
        system.Done();
        database.DropUnused();
        database.DropUnused();
        PluginRegistry::Get().ReleaseAll();
    }

    ResourceDatabase database;
};

TEST_F(MusicResources, ADefinitionGivesFileGainLoopAndEffectsAndNothingElse)
{
    EXPECT_TRUE(music.Play("theme.sound", &database, false));
    EXPECT_EQ(TakeLog(), (Lines{"CreateChannel c1 2 a@0 fx 3 7", "c1 SetGain 0.5", "c1 Play"}));
    EXPECT_EQ(Find(LastId())->GetSubstName(), PString("music"));
    EXPECT_EQ(Find(LastId())->GetDelay(), 0);
    music.Stop();
    EXPECT_TRUE(music.FadeIn("once.sound", &database, 70, false));
    EXPECT_EQ(TakeLog(), (Lines{"c1 Stop", "CreateChannel c2 0 b@0 fx", "c2 FadeIn 70", "c2 Play"}));
}

TEST_F(MusicResources, TheMaskOfResourceEffectsDoesNotReachMusic)
{
    system.DisableResourceFX(0x1FF);
    EXPECT_TRUE(music.Play("theme.sound", &database, false));
    EXPECT_EQ(TakeLog({"CreateChannel"}), (Lines{"CreateChannel c1 2 a@0 fx 3 7"}));
    system.EnableResourceFX(0x1FF);
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
    folder.Write("bad.sound", "*SOUND_DEFINITION { *GAIN 1 }");
    music.Play("a", true);
    TakeLog();
    EXPECT_FALSE(music.CrossFade("bad.sound", &database, 300, true));
    EXPECT_EQ(TakeLog(), (Lines{"c1 FadeOut 300", "c1 Stop"}));
    EXPECT_TRUE(Playing().empty());
}

} // namespace

} // namespace Quon
