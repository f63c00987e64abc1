#pragma once

#include "fuzz/game/GameFolder.h"
#include "harmonet/instances/Microphone.h"
#include "harmonet/instances/Music.h"
#include "harmonet/instances/Sound.h"
#include "harmonet/kernel/SoundSystem.h"

#include <gtest/gtest.h>

#include <vector>

namespace Quon
{

/// A running sound system on the null driver, and what a game has of it.
struct SmallGame
{
    explicit SmallGame(GameFolder& newFolder);

    bool Start() { return system.Init(&folder.GetOS(), false); }
    /// Sounds of every kind that are to get channels, and more of them than there are.
    bool StartMany();
    static void Step(int ms);

    GameFolder& folder;
    SoundSystem system;
    Microphone microphone;
    Music music;
    Sound group;
};

/// Something that a game does and that can fail; false when it has.
struct FallibleAction
{
    const char* name;
    /// Whether the system runs already, which it then does without a failure.
    bool needsSystem;
    /// Played before, and in the cache.
    const char* playedBefore;
    bool (*run)(SmallGame& game);
};

/// Opening and starting in every way, and start-up.
extern const std::vector<FallibleAction> fallibleActions;

/// Repeats the action with its first, second, third step failing, until no step is left to fail; then it has
/// to succeed. `arm` gets the step that fails, counted from 1; `disarm` ends that and returns whether the
/// step was reached. An action that fails reports it and leaves the game as it was: with the same sounds, a
/// later try succeeds, and at the end no memory is left.
void FailEachStep(const FallibleAction& action, void (*arm)(int step), bool (*disarm)());

} // namespace Quon
