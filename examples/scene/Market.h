#pragma once

#include "examples/scene/SoundHistory.h"

#include "harmonet/engine/ResourceDatabase.h"
#include "harmonet/instances/Microphone.h"
#include "harmonet/instances/Music.h"
#include "harmonet/instances/Sound.h"

#include <random>

namespace Scene
{

/// The game: a market street with far more sounds than can be heard, through which the listener walks. The
/// same at each run.
///
/// Sounds without an end stand along the street; a river runs beside it; others come and go around the
/// listener; music goes from one piece over to another half-way.
class Market
{
public:
    static constexpr long durationMs = 40'000;

    /// Everything is looked up in the database. Needs a running sound system.
    Market(const Quon::ResourceDatabase& newDatabase, SoundHistory& newHistory);

    /// One game frame, which ends at that time.
    void Step(long nowMs);

    const Quon::Particle& GetWorld() const { return world; }

private:
    void StartStreet();
    void StartRiver();
    void StartPasserBy(float listenerX);
    int Play(const char* name, const Quon::Vector3& position, int priority);
    float Between(float least, float most);

    const Quon::ResourceDatabase& database;
    SoundHistory& history;
    std::mt19937 random{7};
    Quon::Particle world;
    Quon::Microphone listener;
    Quon::Sound sounds;
    Quon::Music music;
    long nextPasserByMs = 0;
    int river = 0;
    bool isEvening = false;
};

} // namespace Scene
