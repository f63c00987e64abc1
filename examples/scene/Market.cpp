#include "examples/scene/Market.h"

#include <array>

namespace Scene
{

namespace
{

// World units are metres.
constexpr float streetStart = -60.0F;
constexpr float streetEnd = 60.0F;
constexpr float streetHalfWidth = 6.0F;
constexpr int placesAlongStreet = 40;
constexpr float earshot = 20.0F;
constexpr long passerByEveryMs = 400;
constexpr long crossFadeAtMs = Market::durationMs / 2;
constexpr int fadeMs = 4000;
constexpr float musicGain = 0.15F;

// Music has priority 0 and heads the list of playing sounds. A playing sound that cannot pass it must yield
// to more important sounds of the other lists. Therefore no sound here is more important than the music.
constexpr int standingPriority = -1;
constexpr int passingPriorities = 3; ///< 0, -1 and -2.

constexpr std::array<const char*, 9> standing = {"fountain.sound.txt", "crickets.sound.txt", "bees.sound.txt",
    "forge.sound.txt", "pump.sound.txt", "drummer.sound.txt", "hens.sound.txt", "flag.sound.txt",
    "radio.sound.txt"};
constexpr std::array<const char*, 5> passing = {
    "shout.sound.txt", "drop.sound.txt", "clank.sound.txt", "whistle.sound.txt", "bell.sound.txt"};

} // namespace

Market::Market(const Quon::ResourceDatabase& newDatabase, SoundHistory& newHistory)
    : database(newDatabase)
    , history(newHistory)
{
    sounds.AddObserver(&history);
    listener.SetPosition({streetStart, 0.0F, 0.0F});
    listener.SetOrientation(Quon::Vector3{1.0F, 0.0F, 0.0F}, Quon::Vector3{0.0F, 1.0F, 0.0F});
    listener.Activate();
    music.SetGain(musicGain);
    music.FadeIn("morning.wav", &database, fadeMs, true);
    StartStreet();
    StartRiver();
}

void Market::Step(long nowMs)
{
    const float walked = static_cast<float>(nowMs) / static_cast<float>(durationMs);
    const float x = streetStart + walked * (streetEnd - streetStart);
    listener.SetPosition({x, 0.0F, 0.0F});
    std::array<Quon::Vector3, 8> places;
    history.SetPlaces(river, sounds.GetSoundPlaces(river, places.data(), static_cast<int>(places.size())));
    if (nowMs >= nextPasserByMs) {
        StartPasserBy(x);
        nextPasserByMs += passerByEveryMs;
    }
    if (nowMs >= crossFadeAtMs && !isEvening) {
        isEvening = music.CrossFade("evening.wav", &database, fadeMs, true);
    }
}

void Market::StartStreet()
{
    constexpr float distance = (streetEnd - streetStart) / placesAlongStreet;
    for (int place = 0; place < placesAlongStreet; ++place) {
        const float x = streetStart + distance * (static_cast<float>(place) + 0.5F);
        const float side = place % 2 == 0 ? 1.0F : -1.0F;
        const char* const name = standing[static_cast<std::size_t>(place) % standing.size()];
        Play(name, {x, 0.0F, side * Between(2.0F, streetHalfWidth)}, standingPriority);
    }
}

void Market::StartRiver()
{
    river = sounds.New3DSound("river.sound.txt", &database);
    if (river != 0 && sounds.StartSound(river, 0)) {
        history.AddStart(river, "river.sound.txt");
    }
}

void Market::StartPasserBy(float listenerX)
{
    const char* const name = passing[random() % passing.size()];
    const Quon::Vector3 position{
        listenerX + Between(-earshot, earshot), 0.0F, Between(-streetHalfWidth, streetHalfWidth)};
    const int priority = -static_cast<int>(random() % passingPriorities);
    Play(name, position, priority);
}

int Market::Play(const char* name, const Quon::Vector3& position, int priority)
{
    const int id = sounds.New3DSound(name, &database);
    sounds.SetSoundPosition(id, position);
    sounds.SetSoundPriority(id, priority);
    sounds.AttachSound(id, &world, Quon::PString());
    if (id != 0 && sounds.StartSound(id, 0)) {
        history.AddStart(id, name);
    }
    return id;
}

float Market::Between(float minimum, float maximum)
{
    // The distributions of the standard library differ between implementations; this is the same everywhere.
    return minimum +
        (maximum - minimum) * static_cast<float>(random()) / static_cast<float>(std::mt19937::max());
}

} // namespace Scene
