#include "harmonet/instances/Sound.h"
#include "tests/kernel/Scene.h"

#include <algorithm>

namespace Quon
{

namespace
{

// How often each kind of action comes up, as against the others.
// Those that end all sounds are rarer than any of these.
constexpr std::pair<Action::Kind, int> weights[] = {{Action::Play2D, 12}, {Action::Play3D, 12},
    {Action::PlayBlock, 5}, {Action::Start, 6}, {Action::Stop, 14}, {Action::Delete, 5}, {Action::FadeOut, 8},
    {Action::Cat, 10}, {Action::Priority, 8}, {Action::Gain, 5}, {Action::GroupGain, 1},
    {Action::MainGain, 1}, {Action::Move, 14}, {Action::Distances, 4}, {Action::Frequency, 4},
    {Action::Pause, 4}, {Action::MusicFadeIn, 3}, {Action::MusicCrossFade, 3}, {Action::MusicFadeOut, 2},
    {Action::MusicStop, 1}, {Action::MusicGain, 1}, {Action::Listener, 2}, {Action::MoveListener, 8},
    {Action::DropListener, 2}, {Action::Limit, 4}, {Action::ChannelLimit, 2}, {Action::AddObserver, 4},
    {Action::RemoveObserver, 4}};

template<class Value, std::size_t count>
const Value& Pick(SceneDice& dice, const Value (&values)[count])
{
    return values[dice.Draw(static_cast<int>(count))];
}

} // namespace

SceneDice::SceneDice(unsigned int seed, int newCrowd)
    : random(seed)
    , crowd(newCrowd)
{
}

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

Action SceneDice::DrawAction(int lastID)
{
    Action action;
    if (Chance(1) && Chance(50)) {
        action.kind = static_cast<Action::Kind>(Action::StopAll + Draw(3));
        return action;
    }
    int total = 0;
    for (const auto& [kind, weight] : weights)
        total += weight;
    int place = Draw(total);
    for (const auto& [kind, weight] : weights) {
        action.kind = kind;
        place -= weight;
        if (place < 0)
            break;
    }
    if (action.kind <= Action::PlayBlock)
        return DrawPlay();
    // The young ones are those that live, for the most part.
    const int reach = std::max(std::min(lastID, std::max(crowd, 30) + 10), 1);
    action.id = std::max(lastID - Draw(reach), 0);
    DrawDetails(action);
    return action;
}

Action SceneDice::DrawPlay()
{
    static const char* const names[] = {
        "a.wav", "b.wav", "b.wav", "c.wav", "d.wav", "long.wav", "short.wav", "empty.wav", "missing.wav"};
    static const char* const blocks[] = {"block1", "block2", "block3"};
    Action action;
    const int kind = Draw(20);
    action.kind = kind < 9 ? Action::Play3D : kind < 17 ? Action::Play2D : Action::PlayBlock;
    action.file = action.kind == Action::PlayBlock ? Pick(*this, blocks) : names[Draw(Chance(10) ? 9 : 6)];
    action.owner = Chance(20);
    action.flags = (Chance(25) ? Sound::StartLooping : 0) | (Chance(10) ? Sound::StartNotMovable : 0) |
        (Chance(15) ? Sound::StartNoEmulation : 0) | (Chance(20) ? Sound::StartImmediately : 0) |
        (Chance(25) ? Sound::StartQueued : 0) | (Chance(15) ? Sound::StartChgFrequency : 0);
    action.priority = Draw(5) / 2 - 1;
    action.ms = Chance(20) ? Draw(6) * 50 : 0;
    action.position = DrawPosition();
    action.number = 5 + Draw(5) * 3; // The maximum distance.
    action.isOn = !Chance(8); // Whether it is started.
    action.value = Chance(30) ? 0.5F : 1.0F;
    return action;
}

void SceneDice::DrawDetails(Action& action)
{
    static const char* const names[] = {
        "a.wav", "b.wav", "c.wav", "d.wav", "block1", "block2", "empty.wav", "missing.wav"};
    static const unsigned long rates[] = {0, 99, 500, 2000, 44100};
    static const std::uint32_t gainKinds[] = {0, Flag3D, FlagMusic};
    action.file = Pick(*this, names);
    action.isBlock = action.file.starts_with("block");
    action.flags = (Chance(50) ? Sound::StartImmediately : 0) | (Chance(10) ? Sound::StartLooping : 0);
    action.priority = Draw(4) - 1;
    action.ms = Draw(4) * 100;
    action.position = DrawPosition();
    action.isOn = Chance(50);
    action.value = static_cast<float>(Draw(5)) * 0.25F;
    switch (action.kind) {
    case Action::MusicFadeIn:
    case Action::MusicCrossFade:
    case Action::MusicFadeOut:
    case Action::MusicStop:
    case Action::MusicGain:
        action.id = Draw(2);
        if (action.isBlock)
            action.file = "long.wav";
        break;
    case Action::AddObserver:
    case Action::RemoveObserver:
        action.id = 1 + Draw(6);
        break;
    case Action::MainGain:
        action.number = static_cast<int>(Pick(*this, gainKinds));
        break;
    case Action::Frequency:
        action.number = static_cast<int>(Pick(*this, rates));
        break;
    case Action::Limit:
        action.number = Draw(std::max(crowd, 12));
        break;
    case Action::ChannelLimit:
        action.number = Chance(50) ? 1000 : Draw(10);
        break;
    default:
        action.number = 5 + Draw(5) * 3;
        break;
    }
}

} // namespace Quon
