#include "fuzz/FuzzTarget.h"
#include "fuzz/game/Game.h"
#include "fuzz/targets/SharedFolder.h"

namespace Quon
{

namespace
{

constexpr int mostSteps = 400;

void PlayOnce(Dice& dice, int steps, GameFolder& folder)
{
    Game game(dice, folder, true);
    for (; steps > 0 && !dice.IsAtEnd(); --steps) {
        if (dice.Chance(30)) {
            game.Step(dice.Chance(80) ? 40 : dice.Draw(4) * 1000);
        }
        else {
            game.Act();
        }
    }
}

/// Runs a game in which everything is created that is created once and kept.
GameFolder& WarmUp()
{
    GameFolder& folder = GetSharedFolder();
    SeededDice dice(1);
    PlayOnce(dice, 1000, folder);
    folder.DropResources();
    return folder;
}

} // namespace

void FuzzPlay(FuzzBytes bytes)
{
    static GameFolder& folder = WarmUp();
    const std::size_t before = Alloc::LiveBlocks();
    ByteDice dice(bytes);
    PlayOnce(dice, mostSteps, folder);
    folder.DropResources();
    Require(Alloc::LiveBlocks() == before, "a game leaves no memory blocks");
}

} // namespace Quon
