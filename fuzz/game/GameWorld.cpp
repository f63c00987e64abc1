// The operations of the game on everything except single sounds.

#include "fuzz/game/Game.h"
#include "fuzz/game/Witness.h"
#include "harmonet/definitions/EnvReverbPresets.h"

#include <algorithm>

namespace Quon
{

void Game::ReplaceGroup()
{
    Sound*& group = groups[static_cast<std::size_t>(dice.Draw(numGroups))];
    delete group;
    group = new Sound;
}

void Game::ReplaceMicrophone()
{
    auto& microphone = microphones[static_cast<std::size_t>(dice.Draw(2))];
    microphone = std::make_unique<Microphone>();
    if (dice.Chance(90)) {
        microphone->Activate();
    }
}

void Game::StopSystemForAWhile()
{
    if (!dice.Chance(10)) {
        return;
    }
    system.Done();
    for (int i = dice.Draw(4); i > 0; --i) {
        Play2D();
        SetRoom();
        Step(40);
    }
    Start();
    microphones[0]->Activate();
}

void Game::ReloadResources()
{
    folder.GetDatabase().ReloadChanged();
    folder.GetDatabase().DropUnused();
}

void Game::MoveNode()
{
    Particle& node = *nodes[static_cast<std::size_t>(dice.Draw(numNodes))];
    switch (dice.Draw(4)) {
    case 0:
        node.SetOrientation(PickOrientation());
        break;
    case 1:
        node.Remove();
        break;
    case 2:
        nodes[static_cast<std::size_t>(dice.Draw(numNodes))]->Add(&node);
        break;
    default:
        node.SetPosition(PickPosition());
    }
}

void Game::ReplaceNode()
{
    nodes[static_cast<std::size_t>(dice.Draw(numNodes))] = std::make_unique<Particle>();
}

void Game::MoveMicrophone()
{
    Microphone& microphone = *microphones[static_cast<std::size_t>(dice.Draw(2))];
    switch (dice.Draw(4)) {
    case 0:
        microphone.SetOrientation(PickOrientation());
        break;
    case 1: {
        const Vector3 front = PickPosition();
        microphone.SetOrientation(front, PickPosition());
        break;
    }
    case 2:
        microphone.Activate();
        break;
    default:
        microphone.SetPosition(PickPosition());
    }
}

void Game::SetRoom()
{
    Microphone& microphone = *microphones[static_cast<std::size_t>(dice.Draw(2))];
    FXEnvReverb room = fxEnvReverbDefault;
    switch (dice.Draw(3)) {
    case 0:
        microphone.SetFXEnvReverb(&room, dice.Draw(4), 0);
        break;
    case 1:
        microphone.ResetFXEnvReverb(0);
        break;
    default:
        microphone.SetRolloffFactor(PickNumber(2.0F));
        digest.Add(std::int64_t{microphone.GetFXEnvReverb(&room)});
    }
}

void Game::LoadAhead()
{
    SoundPreload& preload = preloads[static_cast<std::size_t>(dice.Draw(2))];
    if (dice.Chance(20)) {
        return preload.Release();
    }
    const ResourceDatabase* database;
    const PString& name = PickName(database);
    digest.Add(std::int64_t{preload.Add(name, database)});
    digest.Add(static_cast<std::int64_t>(preload.GetBytes()));
}

void Game::SetGains()
{
    const float gain = PickNumber(1.0F);
    switch (dice.Draw(5)) {
    case 0:
        return SoundSystem::SetMainGain(gain);
    case 1:
        return SoundSystem::Set2DMainGain(gain);
    case 2:
        return SoundSystem::Set3DMainGain(gain);
    case 3:
        return SoundSystem::SetMusicMainGain(gain);
    default:
        PickGroup().SetGain(gain);
    }
}

void Game::SetLimits()
{
    const auto mask = static_cast<unsigned long>(dice.Draw(512));
    switch (dice.Draw(3)) {
    case 0:
        return system.SetMaxAudibleSounds(
            wild && dice.Chance(10) ? 0xFFFFFFFF : static_cast<unsigned int>(dice.Draw(12)));
    case 1:
        return system.DisableResourceFX(mask);
    default:
        system.EnableResourceFX(mask);
    }
}

void Game::StopMany()
{
    switch (dice.Draw(8)) {
    case 0:
        return SoundSystem::StopAll();
    case 1:
        return SoundSystem::StopAll2D();
    case 2:
        return SoundSystem::StopAll3D();
    default:
        PickGroup().BindAxisToDirection(dice.Draw(8) - 4);
    }
}

void Game::AddWitness()
{
    if (witnesses.size() < maxWitnesses) {
        witnesses.push_back(std::make_unique<Witness>(*this));
    }
    PickGroup().AddObserver(witnesses.back().get());
}

void Game::MoveWitness()
{
    if (witnesses.empty()) {
        return;
    }
    Witness& witness = *witnesses[static_cast<std::size_t>(dice.Draw(static_cast<int>(witnesses.size())))];
    Sound& group = PickGroup();
    if (dice.Chance(50)) {
        group.AddObserver(&witness);
    }
    else {
        group.RemoveObserver(&witness);
    }
    digest.Add(std::int64_t{group.HasObserver(&witness)});
}

void Game::DropWitness()
{
    if (witnesses.empty()) {
        return;
    }
    const auto place = witnesses.begin() + dice.Draw(static_cast<int>(witnesses.size()));
    // Its destructor may trigger another operation, which must not find it in the list.
    const std::unique_ptr<Witness> dropped = std::move(*place);
    witnesses.erase(place);
}

// Inside a handler, neither call may have an effect.
void Game::ForbiddenInside()
{
    if (depth == 0) {
        return;
    }
    system.Done();
    Step(40);
}

} // namespace Quon
