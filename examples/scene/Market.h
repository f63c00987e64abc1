#pragma once

#include "examples/scene/SoundHistory.h"

#include "harmonet/engine/ResourceDatabase.h"
#include "harmonet/instances/Microphone.h"
#include "harmonet/instances/Music.h"
#include "harmonet/instances/Sound.h"

#include <random>

namespace Scene
{

/// The game: the listener walks through a market street with far more sounds than can be heard. Each run is
/// the same.
///
/// Looping sounds are placed along the street, and a river runs beside it. Other sounds come and go around
/// the listener. Halfway through, the music cross-fades from one piece to another.
class Market
{
public:
    static constexpr long durationMs = 40'000;

    /// The database contains all definitions. Needs a running sound system.
    Market(const Quon::ResourceDatabase& newDatabase, SoundHistory& newHistory);

    /// Runs one game frame, which ends at `nowMs`.
    void Step(long nowMs);

    const Quon::Particle& GetWorld() const { return world; }

private:
    void StartStreet();
    void StartRiver();
    void StartPasserBy(float listenerX);
    int Play(const char* name, const Quon::Vector3& position, int priority);
    float Between(float minimum, float maximum);

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
