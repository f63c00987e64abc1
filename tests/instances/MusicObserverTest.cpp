// Notifications of music, and what observers may do in them.

#include "harmonet/instances/MusicObserver.h"
#include "harmonet/instances/Music.h"
#include "tests/support/SoundTest.h"

#include <functional>

namespace Quon
{

namespace
{

/// Records its notifications, and then does what the test requests.
class MusicLog : public MusicObserver
{
public:
    void OnMusicBegin(Music& music, const PString& name) override { Note("begin", music, name); }
    void OnMusicEnd(Music& music, const PString& name) override { Note("end", music, name); }
    void OnMusicAbort(Music& music, const PString& name, int remaining) override
    {
        Note("abort " + std::to_string(remaining), music, name);
    }
    void OnMusicLoop(Music& music, const PString& name) override { Note("loop", music, name); }
    void OnMusicGivesWay(Music& music, const PString& name) override { Note("gives way", music, name); }
    void OnMusicShutDown(Music& music) override { Note("shut down", music, PString()); }

    Lines Take() { return std::exchange(lines, {}); }

    std::function<void(const std::string& what, Music&)> act;

private:
    void Note(const std::string& what, Music& music, const PString& name)
    {
        lines.push_back(what + (name.IsEmpty() ? "" : " " + std::string(name.GetView())));
        if (act) {
            act(what, music);
        }
    }

    Lines lines;
};

/// Pieces of five seconds, "a" to "c", and an observed handle.
class MusicObserverTest : public SoundTest
{
protected:
    MusicObserverTest()
    {
        for (const char* name : {"a", "b", "c"}) {
            WriteWave(name, {5000});
        }
        music->AddObserver(&log);
    }

    /// The channel's file is read to its end, and the end is reported.
    void RunOut(int channel)
    {
        recording.Read(channel, 5000);
        StepWithEnd(channel);
    }

    MusicLog log;
    std::unique_ptr<Music> music = std::make_unique<Music>();
};

TEST_F(MusicObserverTest, EachPieceThatBeginsEndsInOneWay)
{
    struct Row
    {
        const char* what;
        std::function<void()> act;
        Lines notes;
    };
    const Row rows[] = {
        {"runs out", [this] { RunOut(1); }, {"end a"}},
        {"is stopped", [this] { music->Stop(); }, {"abort 5000 a"}},
        {"is stopped with all", [] { SoundSystem::StopAll(); }, {"abort 5000 a"}},
        {"fades out",
            [this] {
                music->FadeOut(100);
                EXPECT_EQ(log.Take(), Lines());
                StepWithEnd(1);
            },
            {"end a"}},
        {"fades out for a new one",
            [this] {
                music->FadeOut(100);
                music->Play("b", false);
                EXPECT_EQ(log.Take(), (Lines{"gives way a", "begin b"}));
                StepWithEnd(1);
                RunOut(2);
            },
            {"end b"}},
        {"gives way to a loop",
            [this] {
                music->CrossFade("b", 100, true);
                EXPECT_EQ(log.Take(), (Lines{"gives way a", "begin b"}));
                music->Stop();
            },
            {"abort -1 b"}},
        {"gives way to what is not there", [this] { EXPECT_FALSE(music->CrossFade("no", 100, true)); },
            {"gives way a"}},
        {"is paused and stopped before it begins",
            [this] {
                music->Stop();
                music->Pause();
                EXPECT_TRUE(music->Play("b", false));
                music->Stop();
                music->Resume();
            },
            {"abort 5000 a"}},
        {"runs out without a channel",
            [this] {
                system.SetMaxAudibleSounds(0);
                Play("c");
                StepTimes(6, 900);
                EXPECT_EQ(log.Take(), Lines());
                Step(900);
            },
            {"end a"}},
        {"ends with the system", [this] { system.Done(); }, {"abort 5000 a"}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        recording.Reset();
        system.Done();
        ASSERT_TRUE(Start());
        ASSERT_TRUE(music->Play("a", false));
        EXPECT_EQ(log.Take(), Lines{"begin a"});
        row.act();
        EXPECT_EQ(log.Take(), row.notes);
    }
}

TEST_F(MusicObserverTest, EachLoopIsReportedAudibleOrVirtual)
{
    ASSERT_TRUE(music->Play("a", true));
    log.Take();
    recording.Read(1, 4900);
    Step(40);
    EXPECT_EQ(log.Take(), Lines());
    recording.Read(1, 300);
    Step(40);
    EXPECT_EQ(log.Take(), Lines{"loop a"});
    // A change of position does not count as a loop.
    EXPECT_TRUE(music->SetPosition(4000));
    Step(40);
    EXPECT_TRUE(music->SetPosition(1000));
    Step(40);
    EXPECT_EQ(log.Take(), Lines());
    system.SetMaxAudibleSounds(0);
    Play("c");
    StepTimes(6, 900);
    EXPECT_EQ(log.Take(), Lines{"loop a"});
}

TEST_F(MusicObserverTest, AHandlerMayUseTheHandle)
{
    log.act = [this](const std::string& what, Music& handle) {
        EXPECT_EQ(&handle, music.get());
        if (what == "end") {
            EXPECT_TRUE(handle.Play("b", true));
            Step(40);
            system.Done();
        }
        else if (what == "loop") {
            EXPECT_TRUE(handle.CrossFade("c", 100, false));
            EXPECT_TRUE(handle.SetPosition(4500));
        }
        else if (what == "gives way") {
            handle.Stop();
        }
    };
    ASSERT_TRUE(music->Play("a", false));
    RunOut(1);
    EXPECT_EQ(log.Take(), (Lines{"begin a", "end a", "begin b"}));
    recording.Read(2, 4900);
    Step(40);
    recording.Read(2, 200);
    Step(40);
    EXPECT_EQ(log.Take(), (Lines{"loop b", "gives way b", "begin c", "abort 500 c"}));
    EXPECT_TRUE(Playing().empty());
}

TEST_F(MusicObserverTest, ObserversAndHandlesGoInAnyOrder)
{
    // The first takes itself out, and ends the second.
    auto second = std::make_unique<MusicLog>();
    MusicLog third;
    music->AddObserver(second.get());
    music->AddObserver(&third);
    music->AddObserver(&third);
    log.act = [&](const std::string&, Music& handle) {
        handle.RemoveObserver(&log);
        second.reset();
    };
    ASSERT_TRUE(music->Play("a", true));
    EXPECT_EQ(log.Take(), Lines{"begin a"});
    EXPECT_EQ(third.Take(), Lines{"begin a"});
    // A copy steers the same piece, and takes no observers with it.
    Music copy(*music);
    MusicLog ofCopy;
    copy.AddObserver(&ofCopy);
    EXPECT_TRUE(copy.CrossFade("b", 100, true));
    EXPECT_EQ(third.Take(), Lines{"gives way a"});
    EXPECT_EQ(ofCopy.Take(), Lines{"begin b"});
    copy.Stop();
    EXPECT_TRUE(music->Play("c", false));
    third.Take();
    third.act = [](const std::string&, Music& handle) { EXPECT_FALSE(handle.Play("a", false)); };
    music.reset();
    EXPECT_EQ(third.Take(), (Lines{"abort 5000 c", "shut down"}));
}

} // namespace

} // namespace Quon
