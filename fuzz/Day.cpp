// Simulates a day of a game in a minute or two. Usage: harmonet_day [HOURS [SEED]].
//
// The game runs on the null driver from a seed, restarts the sound system every hour and sometimes in
// between, and must end with as many live memory blocks as it began with. Prints a digest of all
// notifications, which is the same for the same seed in every run and with every compiler. Plays the first
// hour twice; the digests must be equal. Exits with 1 if a check fails.

#include "fuzz/game/Game.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <vector>

using namespace Quon;

namespace
{

constexpr long hourMs = 3600 * 1000;

struct Score
{
    std::vector<std::uint64_t> digests; ///< After each hour.
    unsigned long notificationCount = 0;
    unsigned long updateCount = 0;
    unsigned long operationCount = 0;
};

/// Plays one game frame and returns its length in milliseconds. At night little happens, and the frames are
/// long.
int PlayFrame(Dice& dice, Game& game, bool isNight, Score& score)
{
    constexpr int dayStepsMs[] = {40, 50, 67, 100, 100, 120};
    constexpr int nightStepsMs[] = {100, 200, 250, 400};
    const bool acts = dice.Chance(isNight ? 15 : 50);
    for (int i = acts ? 1 + dice.Draw(3) : 0; i > 0; --i) {
        game.Act();
        ++score.operationCount;
    }
    const int ms = isNight ? dice.Pick(nightStepsMs) : dice.Pick(dayStepsMs);
    game.Step(ms);
    ++score.updateCount;
    return ms;
}

/// Uses up ids until the next one is a multiple of the number of hash buckets of the sound table, so that
/// iteration over the table has the same order in every run.
void AlignIDs(GameFolder& folder)
{
    constexpr int alignment = 32;
    SoundSystem system;
    system.Init(&folder.GetOS(), false);
    Sound group;
    int id = 0;
    do {
        id = group.New2DSound(folder.GetFiles().front(), nullptr);
        group.DeleteSound(id);
    } while (id != 0 && id % alignment != 0);
}

Score Play(GameFolder& folder, int hours, std::uint64_t seed)
{
    AlignIDs(folder);
    Score score;
    {
        SeededDice dice(seed);
        Game game(dice, folder, false);
        for (int hour = 0; hour < hours; ++hour) {
            const bool isNight = hour % 24 >= 16;
            for (long ms = 0; ms < hourMs;) {
                ms += PlayFrame(dice, game, isNight, score);
            }
            game.Restart();
            score.digests.push_back(game.GetDigest());
        }
        score.notificationCount = game.GetNotificationCount();
    }
    folder.DropResources();
    return score;
}

} // namespace

int main(int argumentCount, char** arguments)
{
    const int hours = argumentCount > 1 ? std::atoi(arguments[1]) : 24;
    const auto seed = argumentCount > 2 ? std::strtoull(arguments[2], nullptr, 10) : 1;
    if (hours < 1) {
        std::fprintf(stderr, "usage: harmonet_day [HOURS [SEED]]\n");
        return 2;
    }
    GameFolder folder;
    const auto start = std::chrono::steady_clock::now();
    const Score hour = Play(folder, 1, seed);
    const std::size_t blocksBefore = Alloc::LiveBlocks();
    const Score day = Play(folder, hours, seed);
    const std::size_t blocksAfter = Alloc::LiveBlocks();
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;

    std::printf(
        "%d hours: %lu updates, %lu operations, %lu notifications, %zu live blocks before and %zu after, "
        "%.1f s\ndigest %016llx\n",
        hours, day.updateCount, day.operationCount, day.notificationCount, blocksBefore, blocksAfter,
        seconds.count(), static_cast<unsigned long long>(day.digests.back()));
    if (hour.digests.front() != day.digests.front()) {
        std::fprintf(stderr, "the first hour differs between two runs\n");
        return 1;
    }
    return blocksBefore == blocksAfter ? 0 : 1;
}
