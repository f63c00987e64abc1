#include "harmonet/instances/Sound.h"
#include "tests/kernel/Scene.h"

#include <algorithm>

namespace Quon
{

namespace
{

template<class Value, std::size_t count>
const Value& Pick(SceneDice& dice, const Value (&values)[count])
{
    return values[dice.Draw(static_cast<int>(count))];
}

} // namespace

// Of various lengths: of those below 500 ms none is ever emulated.
std::vector<ModelFile> SceneDice::GetFiles()
{
    return {
        {"a.wav", false, 1000, 600},
        {"b.wav", false, 1000, 3000},
        {"c.wav", false, 22050, 44100},
        {"d.wav", false, 8000, 12000},
        {"short.wav", false, 1000, 450},
        {"empty.wav", false, 1000, 0},
        {"long.wav", false, 1000, 20000},
        {"block1", true, 1000, 800},
        {"block2", true, 1000, 2500},
        {"block3", true, 8000, 3000},
    };
}

Vector3 SceneDice::DrawPosition()
{
    Vector3 position;
    for (float* value : {&position.x, &position.y, &position.z})
        *value = static_cast<float>(Draw(5)) * (Chance(20) ? 2.75F : 4.0F);
    return position;
}

Action SceneDice::DrawPlay()
{
    static const char* const names[] = {
        "a.wav", "b.wav", "b.wav", "c.wav", "d.wav", "long.wav", "short.wav", "empty.wav", "missing.wav"};
    static const char* const blocks[] = {"block1", "block2", "block3"};
    Action action;
    const int kind = Draw(20);
    action.made = kind < 9 ? Action::Sound3D : kind < 17 ? Action::Sound2D : Action::Block;
    action.file = action.made == Action::Block ? Pick(*this, blocks) : names[Draw(Chance(10) ? 9 : 6)];
    action.owner = Chance(20);
    action.flags = (Chance(25) ? Sound::StartLooping : 0) | (Chance(10) ? Sound::StartNotMovable : 0) |
        (Chance(15) ? Sound::StartNoEmulation : 0) | (Chance(20) ? Sound::StartImmediately : 0) |
        (Chance(25) ? Sound::StartQueued : 0) | (Chance(15) ? Sound::StartChgFrequency : 0);
    action.priority = Draw(5) / 2 - 1;
    action.ms = Chance(20) ? Draw(6) * 50 : 0;
    action.position = DrawPosition();
    action.maxDistance = 5.0F + 3.0F * static_cast<float>(Draw(5));
    action.isOn = !Chance(8); // Whether it is started.
    action.gain = Chance(30) ? 0.5F : 1.0F;
    return action;
}

Action SceneDice::DrawAction(int lastID, int count)
{
    static const char* const names[] = {
        "a.wav", "b.wav", "c.wav", "d.wav", "block1", "block2", "empty.wav", "missing.wav"};
    static const char* const musicNames[] = {
        "a.wav", "b.wav", "c.wav", "d.wav", "long.wav", "long.wav", "empty.wav", "missing.wav"};
    static const unsigned long rates[] = {0, 99, 100, 2000, 44100, 100000, 100001};
    static const std::uint32_t gainKinds[] = {0, Flag3D, FlagMusic};
    Action action;
    // The young ones are those that live, for the most part.
    action.id = lastID - Draw(std::max(std::min(count, std::max(crowd, 30) + 10), 1));
    action.file = Pick(*this, names);
    action.isBlock = action.file.starts_with("block");
    action.musicFile = Pick(*this, musicNames);
    action.handle = Draw(2);
    action.observer = 1 + Draw(Scene::numOtherObservers);
    action.flags = (Chance(50) ? Sound::StartImmediately : 0) | (Chance(10) ? Sound::StartLooping : 0);
    action.priority = Draw(4) - 1;
    action.ms = Draw(4) * 100;
    action.maxDistance = 5.0F + 3.0F * static_cast<float>(Draw(5));
    action.gain = static_cast<float>(Draw(5)) * 0.25F;
    action.gainKind = Pick(*this, gainKinds);
    action.hz = Pick(*this, rates);
    action.limit = Draw(std::max(crowd, 12));
    action.channelLimit = Chance(50) ? 1000 : Draw(10);
    action.position = DrawPosition();
    action.isOn = Chance(50);
    return action;
}

} // namespace Quon
