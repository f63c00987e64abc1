// Pieces of music: the calls on the driver.

#include "harmonet/instances/Music.h"
#include "harmonet/definitions/SoundResource.h"
#include "harmonet/engine/ResourceType.h"
#include "harmonet/files/SndNodeCache.h"
#include "harmonet/instances/SndBase.h"
#include "harmonet/kernel/SndKernel.h"
#include "tests/instances/WithResources.h"
#include "tests/support/SoundTest.h"

#include <algorithm>
#include <functional>
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
        for (const char* name : {"a", "b", "c"}) {
            WriteWave(name, {5000});
        }
    }

    /// The instance of the piece that was started last; nothing else makes sounds here.
    int LastId() const
    {
        int last = 0;
        for (const Ids& ids : {Playing(), Emulated()}) {
            for (const int id : ids) {
                last = std::max(last, id);
            }
        }
        return last;
    }

    Music music;
};

// A handle may outlive the system, and its piece the handle: a piece looks for its gain in the handle that
// started it, which can be assigned another and go.
TEST_F(MusicTest, HandlesAndKernelOutliveOneAnother)
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
    SoundSystem::StopAll2D();
    EXPECT_EQ(Playing(), (Ids{left}));
    SoundSystem::StopAll();
    EXPECT_EQ(Playing(), Ids());
    music.Play("a", true);
    system.Done();
    EXPECT_FALSE(music.Play("a", true) || music.FadeOut(1) || music.CrossFade("a", 1, true));
    EXPECT_EQ(music.GetRemainLength(), 0U);
    music.Stop();
    const std::pair<float, float> gains[] = {
        {2.0F, 1.0F}, {-0.5F, 0.0F}, {0.75F, 0.75F}, {std::numeric_limits<float>::quiet_NaN(), 0.75F}};
    for (const auto& [given, kept] : gains) {
        music.SetGain(given);
        EXPECT_EQ(music.GetGain(), kept) << given;
    }
}

TEST_F(MusicTest, EveryFormStartsWithItsFadeAndLoop)
{
    const std::pair<std::function<bool(bool)>, const char*> forms[] = {
        {[&](bool loop) { return music.Play("a", loop); }, ""},
        {[&](bool loop) { return music.Play("a", nullptr, loop); }, ""},
        {[&](bool loop) { return music.FadeIn("a", 70, loop); }, "FadeIn 70"},
        {[&](bool loop) { return music.FadeIn("a", nullptr, 70, loop); }, "FadeIn 70"},
        {[&](bool loop) { return music.CrossFade("a", 70, loop); }, "FadeIn 70"},
        {[&](bool loop) { return music.CrossFade("a", nullptr, 70, loop); }, "FadeIn 70"},
        {[&](bool loop) { return music.Play("a", nullptr, Music::Settings{.loop = loop}); }, ""},
    };
    int channel = 0;
    for (const auto& [start, fade] : forms) {
        for (const bool loop : {false, true}) {
            const std::string name = 'c' + std::to_string(++channel);
            SCOPED_TRACE(name);
            EXPECT_TRUE(start(loop));
            Lines expected = {"CreateChannel " + name + (loop ? " 2" : " 0") + " a@0 fx"};
            if (*fade) {
                expected.push_back(name + ' ' + fade);
            }
            expected.push_back(name + " Play");
            EXPECT_EQ(TakeLog(), expected);
            music.Stop();
            TakeLog();
        }
    }
    EXPECT_EQ(GetRunningKernel()->GetDataCache()->GetCount(), 0U) << "music is streamed";
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

TEST_F(MusicResources, ADefinitionGivesFileGainLoopAndEffectsOnly)
{
    EXPECT_TRUE(music.Play("theme.sound", &database, false));
    EXPECT_EQ(TakeLog(), (Lines{"CreateChannel c1 2 a@0 fx 3 7", "c1 SetGain 0.5", "c1 Play"}));
    EXPECT_EQ(Find(LastId())->GetSubstName(), PString("sounds"));
    EXPECT_EQ(Find(LastId())->GetDelay(), 0);
    music.Stop();
    EXPECT_TRUE(music.FadeIn("once.sound", &database, 70, false));
    EXPECT_EQ(TakeLog(), (Lines{"c1 Stop", "CreateChannel c2 0 b@0 fx", "c2 FadeIn 70", "c2 Play"}));
    // The new piece's own gain is set before it has its channel, and so reaches the one that fades out too.
    EXPECT_TRUE(music.CrossFade("theme.sound", &database, 300, false));
    EXPECT_EQ(TakeLog(),
        (Lines{"c2 FadeOut 300", "c2 SetGain 0.5", "CreateChannel c3 2 a@0 fx 3 7", "c3 FadeIn 300",
            "c3 SetGain 0.5", "c3 Play"}));
    // A block of effects takes the place of the one before; a plain file leaves gain and effects as they are.
    EXPECT_TRUE(music.CrossFade("theme.sound", &database, 300, false));
    TakeLog();
    EXPECT_TRUE(music.CrossFade("c", 300, false));
    EXPECT_EQ(TakeLog({"CreateChannel", "c5"}),
        (Lines{"CreateChannel c5 0 c@0 fx 3 7", "c5 FadeIn 300", "c5 SetGain 0.5", "c5 Play"}));
    // What cannot be had ends a fading piece.
    folder.Write("bad.sound", "*SOUND_DEFINITION { *GAIN 1 }");
    EXPECT_FALSE(music.CrossFade("bad.sound", &database, 300, true));
    EXPECT_TRUE(Playing().empty());
    EXPECT_FALSE(music.Play("missing.sound", &database, false));
}

/// A resource of the game's own, which does with the music what the test asks for.
class WilfulResource : public SoundResource
{
public:
    using SoundResource::SoundResource;

    bool ApplyMusicSettings(Music* music) const override
    {
        act(*music);
        return true;
    }

    static inline std::function<void(Music&)> act;
};

TEST_F(MusicResources, AResourceMayStopThePieceOrStartAnother)
{
    new ResourceType<WilfulResource>(PString("wilful"), UId("6B7E2199-3F4C-41A7-8C2D-5E19A07C33D1"),
        UId("6B7E2180-3F4C-41A7-8C2D-5E19A07C33D1"));
    WriteWave("a.wilful", {5000});
    const std::function<void(Music&)> ways[] = {[](Music& handle) { handle.Stop(); },
        [](Music& handle) { handle.FadeOut(10); }, [](Music& handle) { handle = Music(); }};
    for (const auto& end : ways) {
        WilfulResource::act = end;
        EXPECT_FALSE(music.Play("a.wilful", &database, false));
        EXPECT_TRUE(TakeLog().empty());
    }
    WilfulResource::act = [](Music& handle) { EXPECT_TRUE(handle.Play("b", true)); };
    EXPECT_TRUE(music.Play("a.wilful", &database, false));
    EXPECT_EQ(TakeLog(), (Lines{"CreateChannel c1 2 b@0 fx", "c1 Play"}));
    music.Stop();
    EXPECT_EQ(TakeLog(), (Lines{"c1 Stop"}));
}

} // namespace

} // namespace Quon
