#include "fuzz/game/Game.h"

#include "fuzz/game/Witness.h"
#include "harmonet/engine/TaskList.h"

#include <cmath>
#include <limits>
#include <stdexcept>

namespace Quon
{

namespace
{

// Limits observers that start a sound, whose begin makes them start another, and so on.
constexpr int maxDepth = 3;

constexpr const char* sizes[] = {"1000000", "0", "3000", "20000"};
constexpr const char* limits[] = {"8", "1", "4", "20"};

} // namespace

const Game::Operation Game::operations[] = {
    {1, &Game::ReplaceGroup},
    {1, &Game::ReplaceMicrophone},
    {1, &Game::StopSystemForAWhile},
    {1, &Game::ReloadResources},
    {20, &Game::Play2D},
    {30, &Game::Play3D},
    {5, &Game::PlayAttached},
    {8, &Game::PlayBlock},
    {3, &Game::PlayLine},
    {4, &Game::MakeUnstarted},
    {6, &Game::StartMade},
    {10, &Game::StopOne},
    {4, &Game::DeleteOne},
    {5, &Game::FadeOne},
    {8, &Game::Append},
    {2, &Game::Attach},
    {8, &Game::SetSomething},
    {6, &Game::SetPlacement},
    {4, &Game::SetEffect},
    {3, &Game::AskEverything},
    {6, &Game::MoveNode},
    {1, &Game::ReplaceNode},
    {8, &Game::MoveMicrophone},
    {2, &Game::SetRoom},
    {4, &Game::PlayMusic},
    {3, &Game::LoadAhead},
    {5, &Game::FadeMusic},
    {3, &Game::SetGains},
    {2, &Game::SetLimits},
    {1, &Game::StopMany},
    {4, &Game::AddWitness},
    {4, &Game::MoveWitness},
    {3, &Game::DropWitness},
    {1, &Game::ForbiddenInside},
};

Game::Game(Dice& newDice, GameFolder& newFolder, bool newWild)
    : dice(newDice)
    , folder(newFolder)
    , wild(newWild)
{
    Start();
    for (Sound*& group : groups) {
        group = new Sound;
    }
    firstID = groups[0]->New2DSound(folder.GetFiles()[0], nullptr);
    groups[0]->DeleteSound(firstID);
    for (auto& node : nodes) {
        node = std::make_unique<Particle>();
    }
    for (auto& microphone : microphones) {
        microphone = std::make_unique<Microphone>();
    }
    microphones[0]->Activate();
    AddWitness();
}

// Destroys the system or the groups first. Both orders must work.
Game::~Game()
{
    depth = maxDepth; // Observers no longer act.
    if (dice.Chance(50)) {
        system.Done();
    }
    for (Sound* group : groups) {
        delete group;
    }
}

void Game::Start()
{
    Options& options = *folder.GetOS().GetOptions();
    options.Set("SoundCacheSize", dice.Pick(sizes));
    options.Set("MaxSounds", dice.Pick(limits));
    if (!system.Init(&folder.GetOS(), false)) {
        throw std::runtime_error("the sound system does not start");
    }
}

void Game::Act()
{
    RunOperation(false);
}

void Game::RunOperation(bool isInner)
{
    const std::size_t first = isInner ? outerOperations : 0;
    int sum = 0;
    for (std::size_t i = first; i < std::size(operations); ++i) {
        sum += operations[i].weight;
    }
    const auto* chosen = std::begin(operations) + first;
    for (int left = dice.Draw(sum) - chosen->weight; left >= 0; left -= chosen->weight) {
        ++chosen;
    }
    (this->*chosen->run)();
}

void Game::Step(int ms)
{
    TaskList::Get().Update(static_cast<float>(ms) / 1000.0F);
}

void Game::Restart()
{
    system.Done();
    Start();
    microphones[0]->Activate();
}

// After the operation, the calling witness may have been destroyed.
void Game::Notify(Note note, int id, const PString& fileName, int remaining)
{
    ++notificationCount;
    digest.Add(static_cast<int>(note));
    digest.Add(id != 0 ? static_cast<std::int64_t>(id) - firstID : 0);
    digest.Add(remaining);
    const std::string_view name = fileName.GetView();
    digest.Add({reinterpret_cast<const unsigned char*>(name.data()), name.size()});
    if (depth >= maxDepth || !dice.Chance(15)) {
        return;
    }
    ++depth;
    RunOperation(true);
    --depth;
}

void Witness::OnBufferFree(int soundID, void* buffer)
{
    int number = 0;
    for (MemoryBlock& block : game.folder.GetBlocks()) {
        if (block.GetData() == buffer) {
            break;
        }
        ++number;
    }
    game.Notify(Game::Note::Free, soundID, PString(), number);
}

int Game::PickID()
{
    if (dice.Chance(3)) {
        return wild ? firstID + dice.Draw(1 << 16) : 0;
    }
    return keptIDs[static_cast<std::size_t>(dice.Draw(numKeptIDs))];
}

int Game::Keep(int id)
{
    if (id != 0) {
        keptIDs[keptCount++ % numKeptIDs] = id;
    }
    return id;
}

// One decision per statement, here and elsewhere: the order of evaluation within an expression is
// unspecified.
int Game::PickFlags()
{
    constexpr struct
    {
        int flag;
        int percent;
    } chances[] = {{Sound::StartLooping, 20}, {Sound::StartNotMovable, 10}, {Sound::StartNoEmulation, 10},
        {Sound::StartImmediately, 20}, {Sound::StartNowOrCompete, 20}, {Sound::StartQueued, 30},
        {Sound::StartChgFrequency, 10}, {Sound::StartDisableMicFX, 10}};
    int flags = 0;
    for (const auto& chance : chances) {
        if (dice.Chance(chance.percent)) {
            flags |= chance.flag;
        }
    }
    return flags;
}

int Game::PickMs()
{
    const int ms = dice.Draw(8) * 100;
    return wild && dice.Chance(10) ? ms - 1000 : ms;
}

const PString& Game::PickFile()
{
    const auto& files = folder.GetFiles();
    return files[static_cast<std::size_t>(dice.Draw(static_cast<int>(files.size())))];
}

const PString& Game::PickName(const ResourceDatabase*& database)
{
    database = dice.Chance(40) ? &folder.GetDatabase() : nullptr;
    if (!database) {
        return PickFile();
    }
    const auto& resources = folder.GetResources();
    return resources[static_cast<std::size_t>(dice.Draw(static_cast<int>(resources.size())))];
}

float Game::PickNumber(float maximum)
{
    constexpr float oddNumbers[] = {std::numeric_limits<float>::quiet_NaN(),
        std::numeric_limits<float>::infinity(), -std::numeric_limits<float>::infinity(), -1.0F, 3e38F, -3e38F,
        1e-40F, -0.0F};
    if (wild && dice.Chance(8)) {
        return dice.Pick(oddNumbers);
    }
    return maximum * static_cast<float>(dice.Draw(17)) / 16.0F;
}

Vector3 Game::PickPosition()
{
    const float x = PickNumber(16.0F);
    const float y = PickNumber(4.0F);
    return {x, y, PickNumber(16.0F)};
}

Quaternion Game::PickOrientation()
{
    const float x = PickNumber(1.0F);
    const float y = PickNumber(1.0F);
    const float z = PickNumber(1.0F);
    return {x, y, z, PickNumber(1.0F)};
}

Sound::Settings Game::PickSettings()
{
    Sound::Settings settings;
    settings.setCone = dice.Chance(20);
    settings.innerConeAngle = PickNumber(360.0F);
    settings.outerConeAngle = PickNumber(360.0F);
    settings.coneGain = PickNumber(1.0F);
    settings.setDistance = dice.Chance(70);
    settings.minDistance = PickNumber(8.0F);
    settings.maxDistance = PickNumber(32.0F);
    settings.cutout = dice.Chance(50);
    return settings;
}

} // namespace Quon
