// The operations of the game on sounds and music.

#include "fuzz/game/Game.h"

#include <algorithm>
#include <cstring>

namespace Quon
{

namespace
{

constexpr int axes[] = {-3, -2, -1, 1, 2, 3, 0, 4};

} // namespace

void Game::Play2D()
{
    const ResourceDatabase* database;
    const PString& name = PickName(database);
    const int flags = PickFlags();
    const int priority = PickPriority();
    Keep(PickGroup().Play2DSound(name, database, flags, priority, PickDelay()));
}

void Game::Play3D()
{
    const ResourceDatabase* database;
    const PString& name = PickName(database);
    const Vector3 position = PickPosition();
    const Sound::Settings settings = PickSettings();
    const int flags = PickFlags();
    const int priority = PickPriority();
    Keep(PickGroup().Play3DSound(position, name, database, flags, priority, settings, PickDelay()));
}

void Game::PlayAttached()
{
    const ResourceDatabase* database;
    const PString& name = PickName(database);
    Particle* const node = nodes[static_cast<std::size_t>(dice.Draw(numNodes))].get();
    const Sound::Settings settings = PickSettings();
    const int flags = PickFlags();
    const int priority = PickPriority();
    Keep(PickGroup().Play3DSound(
        dice.Chance(5) ? nullptr : node, PString(), name, database, flags, priority, settings, 0));
}

void Game::PlayBlock()
{
    auto& blocks = folder.GetBlocks();
    MemoryBlock& block = blocks[static_cast<std::size_t>(dice.Draw(static_cast<int>(blocks.size())))];
    WaveFormatEx format = block.format;
    if (wild && dice.Chance(10)) {
        format.bitsPerSample = static_cast<std::uint16_t>(dice.Draw(64));
    }
    const int flags = PickFlags();
    const int priority = PickPriority();
    Keep(PickGroup().Play2DSound(block.GetData(), block.GetSize(), &format, flags, priority, PickDelay()));
}

void Game::PlayLine()
{
    const ResourceDatabase* database;
    const PString& name = PickName(database);
    Vector3 points[4];
    for (Vector3& point : points) {
        point = PickPosition();
    }
    const auto count = static_cast<unsigned int>(dice.Draw(5));
    const auto added = static_cast<unsigned int>(dice.Draw(wild ? 12 : 5));
    const float angle = PickNumber(200.0F);
    Sound& group = PickGroup();
    const int id = Keep(group.New3DSound(points, count, name, database, added, angle));
    group.StartSound(id, PickFlags());
}

void Game::MakeUnstarted()
{
    const ResourceDatabase* database;
    const PString& name = PickName(database);
    Sound& group = PickGroup();
    Keep(dice.Chance(50) ? group.New2DSound(name, database) : group.New3DSound(name, database));
}

void Game::StartMade()
{
    const int id = PickID();
    PickGroup().StartSound(id, PickFlags());
}

void Game::StopOne()
{
    PickGroup().StopSound(PickID());
}

void Game::DeleteOne()
{
    PickGroup().DeleteSound(PickID());
}

void Game::FadeOne()
{
    const int id = PickID();
    PickGroup().FadeOutSound(id, static_cast<unsigned int>(std::max(PickMs(), 0)));
}

void Game::Append()
{
    const int id = PickID();
    if (dice.Chance(50)) {
        const ResourceDatabase* database;
        const PString& name = PickName(database);
        PickGroup().CatSound(id, name, database);
        return;
    }
    auto& blocks = folder.GetBlocks();
    MemoryBlock& block = blocks[static_cast<std::size_t>(dice.Draw(static_cast<int>(blocks.size())))];
    PickGroup().CatSound(id, block.GetData(), block.GetSize(), &block.format);
}

void Game::Attach()
{
    const int id = PickID();
    PickGroup().AttachSound(id, nodes[static_cast<std::size_t>(dice.Draw(numNodes))].get(), PString());
}

void Game::SetSomething()
{
    constexpr unsigned long rates[] = {0, 99, 100, 2000, 44100, 100000, 100001};
    Sound& group = PickGroup();
    const int id = PickID();
    switch (dice.Draw(5)) {
    case 0:
        return group.SetSoundGain(id, PickNumber(1.0F));
    case 1:
        return group.SetSoundPriority(id, PickPriority());
    case 2:
        return group.SetSoundDelay(id, PickMs());
    case 3:
        return group.SetSoundFadeIn(id, PickMs());
    default:
        group.SetFrequency(id, dice.Pick(rates));
    }
}

void Game::SetPlacement()
{
    Sound& group = PickGroup();
    const int id = PickID();
    switch (dice.Draw(5)) {
    case 0:
        return group.SetSoundPosition(id, PickPosition());
    case 1:
        return group.SetSoundOrientation(id, PickOrientation());
    case 2:
        return group.BindSoundAxisToDirection(id, dice.Pick(axes));
    case 3: {
        const Sound::Settings settings = PickSettings();
        return group.SetSoundCone(id, settings.innerConeAngle, settings.outerConeAngle, settings.coneGain);
    }
    default: {
        const Sound::Settings settings = PickSettings();
        group.SetSoundMinMaxDistance(id, settings.minDistance, settings.maxDistance, settings.cutout);
    }
    }
}

template<class Record>
Record Game::PickRecord()
{
    Record record;
    std::memset(&record, dice.Draw(wild ? 256 : 64), sizeof record);
    return record;
}

void Game::SetEffect()
{
    Sound& group = PickGroup();
    const int id = PickID();
    switch (dice.Draw(5)) {
    case 0: {
        const auto record = PickRecord<FXEcho>();
        group.SetFXEcho(id, &record);
        break;
    }
    case 1: {
        const auto record = PickRecord<FXChorus>();
        group.SetFXChorus(id, &record);
        break;
    }
    case 2: {
        const auto record = PickRecord<FXWavesReverb>();
        group.SetFXWavesReverb(id, &record);
        break;
    }
    case 3: {
        const auto record = PickRecord<FXEnvReverb>();
        group.SetFXEnvReverbListenerProperties(id, &record, dice.Draw(4));
        break;
    }
    default: {
        const auto record = PickRecord<FXEnvReverbSourceProperties>();
        group.SetFXEnvReverbSourceProperties(id, &record);
    }
    }
}

void Game::AskEverything()
{
    Sound& group = PickGroup();
    const int id = PickID();
    Vector3 places[8];
    FXEcho echo;
    FXEnvReverb room;
    for (const std::int64_t answer : {static_cast<std::int64_t>(group.GetSoundLength(id)),
             static_cast<std::int64_t>(group.GetRemainLength(id)),
             static_cast<std::int64_t>(group.GetCurrentLength(id)),
             static_cast<std::int64_t>(group.GetFrequency(id)), std::int64_t{group.GetQueueLength(id)},
             std::int64_t{group.GetSoundPriority(id, 0)}, std::int64_t{group.GetSoundPlaces(id, places, 8)},
             std::int64_t{group.GetFXEcho(id, &echo)},
             std::int64_t{group.GetFXEnvReverbListenerProperties(id, &room)},
             static_cast<std::int64_t>(group.GetSoundGain(id) * 1000.0F),
             static_cast<std::int64_t>(Sound::CalcSoundLength(PickFile(), nullptr))}) {
        digest.Add(answer);
    }
}

void Game::PlayMusic()
{
    const ResourceDatabase* database;
    const PString& name = PickName(database);
    Music& piece = music[static_cast<std::size_t>(dice.Draw(2))];
    const int ms = PickMs();
    const bool isLooping = dice.Chance(30);
    if (dice.Chance(50)) {
        piece.Play(name, database, isLooping);
    }
    else {
        piece.FadeIn(name, database, ms, isLooping);
    }
}

void Game::FadeMusic()
{
    Music& piece = music[static_cast<std::size_t>(dice.Draw(2))];
    const int ms = PickMs();
    switch (dice.Draw(5)) {
    case 0:
        piece.FadeOut(ms);
        break;
    case 1:
        piece.Stop();
        break;
    case 2:
        piece.SetGain(PickNumber(1.0F));
        break;
    case 3:
        if (dice.Chance(20)) {
            piece = music[static_cast<std::size_t>(dice.Draw(2))];
        }
        break;
    default: {
        const ResourceDatabase* database;
        const PString& name = PickName(database);
        piece.CrossFade(name, database, ms, dice.Chance(30));
    }
    }
    digest.Add(static_cast<std::int64_t>(piece.GetRemainLength()));
}

} // namespace Quon
