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
    Lines TakeNotes()
    {
        return TakeLog({"begin", "end", "abort", "free", "shutdown", "A ", "B ", "C ", "D "});
    }

    std::unique_ptr<LoggingObserver> NewObserver(const char* prefix)
    {
        auto added = std::make_unique<LoggingObserver>(*names, prefix);
        group->AddObserver(added.get());
        return added;
    }

    const PString file = WriteWave("a.wav", {2000});
};

// The chunk that holds the list has four places: with all numbers up to ten the removals cross its borders.
TEST_F(ObserverTest, EveryObserverCanRemoveItselfOrAnyOther)
{
    for (int count = 1; count <= 10; ++count) {
        for (int acting = 0; acting < count; ++acting) {
            for (int victim = 0; victim < count; ++victim) {
                SCOPED_TRACE(std::to_string(acting) + " of " + std::to_string(count) + " removes " +
                    std::to_string(victim));
                Sound crowd;
                std::vector<std::unique_ptr<LoggingObserver>> observers;
                Lines expected;
                for (int i = 0; i < count; ++i) {
                    observers.push_back(
                        std::make_unique<LoggingObserver>(*names, "A " + std::to_string(i) + ' '));
                    crowd.AddObserver(observers.back().get());
                }
                observers[static_cast<std::size_t>(acting)]->react = [&](const Note&) {
                    crowd.RemoveObserver(observers[static_cast<std::size_t>(victim)].get());
                };
                const int id = crowd.New2DSound(file, nullptr);
                TakeLog();
                crowd.StopSound(id);
                const Lines told = TakeNotes();
                // The begin comes to those before the removal and to the victim unless its turn was still to
                // come; the abort to those that are left.
                EXPECT_EQ(told.size(), static_cast<std::size_t>(2 * count - 1 - (victim > acting)));
                EXPECT_FALSE(crowd.HasObserver(observers[static_cast<std::size_t>(victim)].get()));
            }
        }
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
        group->SetSoundPosition(note.id, {4.0F, 0.0F, 0.0F});
        group->SetSoundPosition(note.id, {3.0F, 0.0F, 0.0F});
        group->SetSoundMinMaxDistance(note.id, 1.0F, 50.0F, true);
        group->SetSoundCone(note.id, 10.0F, 20.0F, 0.5F);
        group->SetSoundGain(note.id, 0.5F);
        group->BindSoundAxisToDirection(note.id, 2);
        group->SetFrequency(note.id, 1000);
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
