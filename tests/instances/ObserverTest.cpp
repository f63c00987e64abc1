#include "tests/support/SoundTest.h"

namespace Quon
{
namespace
{

/// Files and blocks of which a sample frame is a millisecond.
class ObserverTest : public SoundTest
{
protected:
    /// The notes among the lines since the last call.
    Lines TakeNotes() { return TakeLog({"begin", "abort", "shutdown", "A ", "B ", "C "}); }

    std::unique_ptr<LoggingObserver> NewObserver(const char* prefix)
    {
        auto added = std::make_unique<LoggingObserver>(*names, prefix);
        group->AddObserver(added.get());
        return added;
    }

    const PString file = WriteWave("a.wav", {2000});
};

// A chunk of the list has four places, so that the removals cross a border.
TEST_F(ObserverTest, EveryObserverCanRemoveItselfOrAnyOther)
{
    constexpr int count = 6;
    for (int pair = 0; pair < count * count; ++pair) {
        const int acting = pair / count;
        const int victim = pair % count;
        SCOPED_TRACE(std::to_string(acting) + " removes " + std::to_string(victim));
        Sound crowd;
        std::vector<std::unique_ptr<LoggingObserver>> observers;
        for (int i = 0; i < count; ++i) {
            observers.push_back(std::make_unique<LoggingObserver>(*names, "A "));
            crowd.AddObserver(observers.back().get());
        }
        LoggingObserver* const removed = observers[victim].get();
        observers[acting]->react = [&](const Note&) { crowd.RemoveObserver(removed); };
        const int id = crowd.New2DSound(file, nullptr);
        TakeLog();
        crowd.StopSound(id);
        // The begin comes to all but a victim whose turn was still to come, the abort to those that are left.
        EXPECT_EQ(TakeNotes().size(), 2U * count - 1 - (victim > acting));
        EXPECT_FALSE(crowd.HasObserver(removed));
    }
}

TEST_F(ObserverTest, AnObserverCanDestroyItselfOrOneWhoseTurnIsToCome)
{
    auto a = NewObserver("A ");
    auto b = NewObserver("B ");
    auto c = NewObserver("C ");
    a->react = [&](const Note&) { b.reset(); };
    c->react = [&](const Note&) { c.reset(); };
    const int id = Play(file);
    Step(40);
    EXPECT_EQ(TakeNotes(), (Lines{"begin #1 a.wav", "A begin #1 a.wav", "C begin #1 a.wav"}));
    group->StopSound(id);
    EXPECT_EQ(TakeNotes(), (Lines{"abort #1 a.wav 2000", "A abort #1 a.wav 2000"}));
}

// What is told about cannot be ended by its own handler, and can be asked about.
TEST_F(ObserverTest, TheSoundThatIsToldAboutStandsUntilTheHandlerReturns)
{
    const int id = Play3D(file, 3.0F);
    observer->react = [&](const Note& note) {
        if (note.kind == Note::ShutDown)
            return;
        group->StopSound(note.id);
        group->DeleteSound(note.id);
        EXPECT_FALSE(group->FadeOutSound(note.id, 10));
        EXPECT_FALSE(group->StartSound(note.id, 0));
        EXPECT_EQ(group->GetSoundPosition(note.id), (Vector3{3.0F, 0.0F, 0.0F}));
        EXPECT_EQ(group->GetRemainLength(note.id), 2000U);
        // These do no harm either.
        group->SetSoundMinMaxDistance(note.id, 1.0F, 50.0F, true);
        group->SetSoundCone(note.id, 10.0F, 20.0F, 0.5F);
        group->SetSoundGain(note.id, 0.5F);
    };
    Step(40);
    EXPECT_EQ(Playing(), Ids{id});
    group->StopSound(id);
    EXPECT_EQ(TakeNotes(), (Lines{"begin #1 a.wav", "abort #1 a.wav 2000"}));
}

TEST_F(ObserverTest, TheEndOfAGroupEndsItsSoundsAndThenTellsTheShutdown)
{
    Play(file);
    group->New2DSound(file, nullptr);
    Step(40);
    TakeNotes();
    observer->react = [&, ending = group.get()](const Note& note) {
        // Nothing can be made any more that would be left behind.
        EXPECT_EQ(ending->New2DSound(file, nullptr), 0);
        EXPECT_EQ(observer->subject != nullptr, note.kind != Note::ShutDown);
        if (note.kind == Note::ShutDown)
            observer.reset();
    };
    auto last = NewObserver("B ");
    group.reset();
    EXPECT_EQ(TakeNotes(),
        (Lines{"abort #1 a.wav 2000", "B abort #1 a.wav 2000", "begin #2 a.wav", "B begin #2 a.wav",
            "abort #2 a.wav -1", "B abort #2 a.wav -1", "shutdown", "B shutdown"}));
    EXPECT_EQ(last->subject, nullptr);
    EXPECT_EQ(Playing(), Ids());
}

// The walk of an update went by what had been there at its start; the end of a group must not.
TEST_F(ObserverTest, AGroupCanComeAndGoInsideAHandler)
{
    Play(file);
    observer->react = [&](const Note&) {
        Sound brief;
        EXPECT_NE(brief.Play2DSound(file, nullptr, Sound::StartImmediately, 0, 0), 0);
        EXPECT_NE(brief.Play2DSound(file, nullptr, 0, 0, 0), 0);
    };
    Step(40);
    EXPECT_EQ(Playing().size(), 1U);
    EXPECT_EQ(Waiting(), Ids());
    Step(40);
}

} // namespace
} // namespace Quon
