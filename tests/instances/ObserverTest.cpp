#include "harmonet/engine/TaskList.h"
#include "tests/support/SoundTest.h"

#include <functional>

namespace Quon
{
namespace
{

class ObserverTest : public SoundTest
{
protected:
    /// The notes among the lines since the last call.
    Lines TakeNotes() { return TakeLog({"begin", "abort", "shutdown", "A ", "B "}); }

    const PString file = WriteWave("a.wav", {2000});
};

// `subject` refers to one group at most, so the destructor cannot rely on it.
TEST_F(ObserverTest, LeavesEveryGroupWhenDestroyed)
{
    std::vector<std::unique_ptr<Sound>> groups;
    std::unique_ptr<LoggingObserver> watcher;
    std::unique_ptr<SoundObserver> copy;
    SoundObserver elsewhere;
    group->AddObserver(&elsewhere);
    const std::pair<const char*, std::function<void()>> cases[] = {
        {"added", [] {}},
        {"removed from one", [&] { groups[2]->RemoveObserver(watcher.get()); }},
        {"one is destroyed", [&] { groups.erase(groups.begin() + 2); }},
        {"added again",
            [&] {
                groups[2]->RemoveObserver(watcher.get());
                groups[2]->AddObserver(watcher.get());
            }},
        {"assigned over", [&] { static_cast<SoundObserver&>(*watcher) = elsewhere; }},
        {"a copy outlives it", [&] { copy = std::make_unique<SoundObserver>(*watcher); }},
        {"in its handler", [&] { watcher->react = [&](const Note&) { watcher.reset(); }; }},
    };
    for (const auto& [what, act] : cases) {
        SCOPED_TRACE(what);
        groups.clear();
        watcher = std::make_unique<LoggingObserver>(*names, "A ");
        for (int i = 0; i < 5; ++i) {
            groups.push_back(std::make_unique<Sound>());
            groups.back()->AddObserver(watcher.get());
        }
        const SoundObserver* const watched = watcher.get();
        act();
        groups.back()->StopSound(groups.back()->New2DSound(file, nullptr));
        watcher.reset();
        TakeLog();
        for (auto& any : groups) {
            EXPECT_FALSE(any->HasObserver(watched));
            any->StopSound(any->New2DSound(file, nullptr));
            any->AddObserver(nullptr);
            any->RemoveObserver(nullptr);
            any.reset();
        }
        EXPECT_EQ(TakeNotes(), Lines());
        EXPECT_EQ(elsewhere.subject, group.get());
    }
}

// A chunk of the list has four places, so that the removals cross a border.
TEST_F(ObserverTest, AnyObserverCanRemoveOrDestroyAnyOther)
{
    constexpr int count = 6;
    for (int pair = 0; pair < 2 * count * count; ++pair) {
        const int acting = pair / 2 / count;
        const int victim = pair / 2 % count;
        SCOPED_TRACE(std::to_string(acting) + " takes off " + std::to_string(victim));
        Sound crowd;
        std::vector<std::unique_ptr<LoggingObserver>> observers;
        for (int i = 0; i < count; ++i) {
            observers.push_back(std::make_unique<LoggingObserver>(*names, "A "));
            crowd.AddObserver(observers.back().get());
        }
        LoggingObserver* const removed = observers[victim].get();
        observers[acting]->react = [&](const Note&) {
            if (pair % 2 == 0) {
                crowd.RemoveObserver(removed);
            }
            else {
                observers[victim].reset();
            }
        };
        const int id = crowd.New2DSound(file, nullptr);
        TakeLog();
        crowd.StopSound(id);
        // The begin comes to all but a victim whose turn was still to come, the abort to those that are left.
        EXPECT_EQ(TakeNotes().size(), 2U * count - 1 - (victim > acting));
        EXPECT_FALSE(crowd.HasObserver(removed));
    }
}

TEST_F(ObserverTest, TheEndOfAGroupEndsItsSoundsThenNotifiesShutDown)
{
    Play(file);
    group->New2DSound(file, nullptr);
    Step(40);
    TakeNotes();
    observer->react = [&, ending = group.get()](const Note& note) {
        // Nothing can be created any more that would leak.
        EXPECT_EQ(ending->New2DSound(file, nullptr), 0);
        EXPECT_EQ(observer->subject != nullptr, note.kind != Note::ShutDown);
        if (note.kind == Note::ShutDown) {
            observer.reset();
        }
    };
    LoggingObserver last(*names, "B ");
    group->AddObserver(&last);
    // Nothing is left to return to.
    last.react = [&, ending = group.get()](const Note& note) {
        if (note.kind == Note::ShutDown) {
            ending->AddObserver(&last);
        }
    };
    group.reset();
    EXPECT_EQ(TakeNotes(),
        (Lines{"abort #1 a.wav 2000", "B abort #1 a.wav 2000", "begin #2 a.wav", "B begin #2 a.wav",
            "abort #2 a.wav -1", "B abort #2 a.wav -1", "shutdown", "B shutdown"}));
    EXPECT_EQ(last.subject, nullptr);
    EXPECT_EQ(Playing(), Ids());
}

TEST_F(ObserverTest, ASoundStartedDuringAnUpdateIsHandledInTheNext)
{
    system.SetMaxAudibleSounds(0);
    Play(file);
    Step(40);
    system.SetMaxAudibleSounds(20);
    Ids started;
    observer->react = [&](const Note& note) {
        if (note.kind == Note::Abort) {
            started = {Play(file)};
        }
    };
    // Too little is left of the virtual sound.
    Step(1600);
    EXPECT_EQ(Waiting(), started);
    EXPECT_EQ(Playing(), Ids());
    Step(40);
    EXPECT_EQ(Playing(), started);
}

// The walk of an update went by what had been there at its start; the end of a group must not.
TEST_F(ObserverTest, AHandlerCanCreateAndDestroyGroups)
{
    const int id = Play3D(file, 3.0F);
    observer->react = [&](const Note&) {
        EXPECT_EQ(group->GetSoundPosition(id).x, 3.0F);
        EXPECT_EQ(group->GetRemainLength(id), 2000U);
        Sound brief;
        EXPECT_NE(brief.Play2DSound(file, nullptr, Sound::StartImmediately, 0, 0), 0);
        EXPECT_NE(brief.Play2DSound(file, nullptr, 0, 0, 0), 0);
        // What the handler was called from cannot be taken away.
        system.Done();
        TaskList::Get().Done();
        TaskList::Get().Update(1.0F);
    };
    Step(40);
    EXPECT_EQ(Playing(), Ids{id});
    EXPECT_EQ(Waiting(), Ids());
    group->StopSound(id);
    EXPECT_EQ(Playing(), Ids());
}

} // namespace
} // namespace Quon
