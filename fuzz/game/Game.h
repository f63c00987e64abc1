#pragma once

#include "fuzz/game/Dice.h"
#include "fuzz/game/GameFolder.h"
#include "harmonet/instances/Microphone.h"
#include "harmonet/instances/Music.h"
#include "harmonet/instances/Sound.h"
#include "harmonet/instances/SoundPreload.h"
#include "harmonet/kernel/SoundSystem.h"

#include <array>
#include <memory>
#include <vector>

namespace Quon
{

class Witness;

/// A randomised game. It plays, moves, fades and stops sounds of every kind through the public classes on the
/// null driver, with observers that do the same in their handlers, and restarts the system. Its digest covers
/// every notification.
class Game
{
public:
    /// With `newWild`, the game also passes invalid arguments: NaN, infinity and numbers out of range.
    Game(Dice& newDice, GameFolder& newFolder, bool newWild);
    ~Game();
    Game(const Game&) = delete;
    Game& operator=(const Game&) = delete;

    /// Runs one random operation between two updates.
    void Act();
    /// Runs one game frame.
    void Step(int ms);
    /// Stops the system and starts it again, possibly with other options.
    void Restart();

    std::uint64_t GetDigest() const { return digest.Get(); }
    unsigned long GetNotificationCount() const { return notificationCount; }

private:
    friend class Witness;

    enum class Note
    {
        Begin,
        Abort,
        End,
        Free,
        ShutDown
    };

    struct Operation
    {
        int weight;
        void (Game::*run)();
    };
    /// The number of operations at the start of the table that run only outside of handlers.
    static constexpr int outerOperations = 4;
    static const Operation operations[];

    void Start();
    void RunOperation(bool isInner);
    void Notify(Note note, int id, const PString& fileName, int remaining);

    // Outside of handlers.
    void ReplaceGroup();
    void ReplaceMicrophone();
    void StopSystemForAWhile();
    void ReloadResources();
    // Anywhere.
    void Play2D();
    void Play3D();
    void PlayAttached();
    void PlayBlock();
    void PlayLine();
    void MakeUnstarted();
    void StartMade();
    void StopOne();
    void DeleteOne();
    void FadeOne();
    void Append();
    void Attach();
    void SetSomething();
    void SetPlacement();
    void SetEffect();
    void AskEverything();
    void MoveNode();
    void ReplaceNode();
    void MoveMicrophone();
    void SetRoom();
    void PlayMusic();
    void LoadAhead();
    void FadeMusic();
    void SetGains();
    void SetLimits();
    void StopMany();
    void AddWitness();
    void MoveWitness();
    void DropWitness();
    void ForbiddenInside();

    Sound& PickGroup() { return *groups[static_cast<std::size_t>(dice.Draw(numGroups))]; }
    /// Usually returns the id of a recent sound.
    int PickID();
    int Keep(int id);
    int PickFlags();
    int PickPriority() { return dice.Draw(5) - 2; }
    int PickDelay() { return dice.Chance(20) ? dice.Draw(8) * 50 : 0; }
    int PickMs();
    const PString& PickFile();
    /// Returns a resource and sets `database`, or a file and null.
    const PString& PickName(const ResourceDatabase*& database);
    float PickNumber(float maximum);
    Vector3 PickPosition();
    Quaternion PickOrientation();
    Sound::Settings PickSettings();
    template<class Record>
    Record PickRecord();

    static constexpr int numGroups = 3;
    static constexpr int numNodes = 4;
    static constexpr std::size_t numKeptIDs = 48;
    static constexpr std::size_t maxWitnesses = 6;

    Dice& dice;
    GameFolder& folder;
    const bool wild;
    SoundSystem system;
    std::array<std::unique_ptr<Particle>, numNodes> nodes;
    std::array<std::unique_ptr<Microphone>, 2> microphones;
    /// Not smart pointers, because observers use a group while it is being destroyed.
    std::array<Sound*, numGroups> groups{};
    std::vector<std::unique_ptr<Witness>> witnesses;
    std::array<Music, 2> music;
    std::array<SoundPreload, 2> preloads;

    std::array<int, numKeptIDs> keptIDs{};
    std::size_t keptCount = 0;
    int firstID = 0;
    int depth = 0; ///< Nesting depth of handlers that act.
    Digest digest;
    unsigned long notificationCount = 0;
};

} // namespace Quon
