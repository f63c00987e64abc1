#include "fuzz/game/Game.h"
#include "harmonet/kernel/SoundTrace.h"
#include "tests/support/Environment.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <set>
#include <thread>

namespace Quon
{
namespace
{

// An output of OpenAL that takes sound at the speed of a sound card and discards it.
const bool isQuietOutput = SetEnvironment("ALSOFT_DRIVERS", "null");

/// Checks that each sound starts and ends once.
class Register : public SoundTrace
{
public:
    void OnStart(const SoundState& state) override
    {
        EXPECT_TRUE(running.insert(state.id).second) << "started twice";
    }
    void OnEnd(const SoundState& state) override
    {
        EXPECT_EQ(running.erase(state.id), 1U) << "ended without a start";
        ++ends;
    }

    std::set<int> running;
    int ends = 0;
};

// The randomised game, from its frames and from the handlers of its observers, while the driver's thread
// plays its sounds.
TEST(OpenALStress, EverySoundOfARandomGameEndsOnceAndNoMemoryIsLeft)
{
    ASSERT_TRUE(isQuietOutput);
    GameFolder folder;
    SeededDice dice(20263);
    const auto play = [&](const char* driver, int frames, bool isPaced) {
        folder.GetOS().GetOptions()->Set("Sound", driver);
        Register sounds;
        {
            Game game(dice, folder, false);
            SoundSystem::SetTrace(&sounds);
            auto next = std::chrono::steady_clock::now();
            for (; frames > 0 && !testing::Test::HasFailure(); --frames) {
                for (int i = dice.Draw(3); i > 0; --i) {
                    game.Act();
                }
                game.Step(10);
                if (isPaced) {
                    std::this_thread::sleep_until(next += std::chrono::milliseconds(10));
                }
            }
        }
        EXPECT_TRUE(sounds.running.empty());
        EXPECT_GT(sounds.ends, 0);
        folder.DropResources();
        return Alloc::LiveBlocks();
    };
    // What is created once and kept.
    play("HarmonetNull", 2000, false);
    const std::size_t blocksBefore = play("HarmonetOpenAL", 10, false);
    // By the machine's clock, since the driver plays by it.
    EXPECT_EQ(play("HarmonetOpenAL", std::getenv("HARMONET_NIGHTLY") ? 2000 : 120, true), blocksBefore);
}

} // namespace
} // namespace Quon
