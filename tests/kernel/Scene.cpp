#include "tests/kernel/Scene.h"

#include "harmonet/engine/File.h"
#include "harmonet/files/SndFile.h"
#include "harmonet/kernel/SndKernel.h"
#include "harmonet/output/SndChannel.h"

#include <algorithm>
#include <bit>

namespace Quon
{

namespace
{

constexpr int maxReactionDepth = 3;
constexpr int reactionPercent = 12;
constexpr int numOtherObservers = 6;
constexpr float minDistance = 1.0F;

} // namespace

Scene::Scene()
    : model(std::make_unique<UpdateModel>())
{
    File::AddRoot(PString(ownerName), folder.GetPath().c_str());
    for (const ModelFile& file : SceneDice::GetFiles()) {
        model->files[file.name] = file;
        const PcmForm form{file.frames, file.rateHz};
        if (file.isBlock)
            memory[file.name] = &SoundTest::NewBlock(file.name, form);
        else
            WriteWave(file.name, form);
    }
    for (int number = 1; number <= numOtherObservers; ++number)
        others.push_back(std::make_unique<LoggingObserver>(*names, 'o' + std::to_string(number) + ' '));
    model->idOffset = names->GetLastIDBefore();
    model->ActivateListener(origin);
    model->log.clear();
    observer->react = [this](const Note& note) { React(ToModel(note.id), false); };
    model->react = [this](const Note& note) { React(note.id, true); };
}

Scene::~Scene()
{
    File::RemoveRoot(PString(ownerName));
}

void Scene::Live(unsigned int seed, int crowd, int updates)
{
    SceneDice dice(seed, crowd);
    for (auto& reactor : reactors)
        reactor = std::make_unique<Reactor>(seed);
    where = "seed " + std::to_string(seed) + ", crowd " + std::to_string(crowd);
    const std::string scene = where;
    static const float lengths[] = {0.016F, 0.04F, 0.041F, 0.05F, 0.1F, 0.1F, 0.25F, 2.5F};
    for (int update = 0; update < updates && !HasFailure(); ++update) {
        where = scene + ", update " + std::to_string(update);
        const int missing = crowd -
            static_cast<int>(
                model->GetPlaying().size() + model->GetEmulated().size() + model->GetWaiting().size());
        for (int plays = dice.Draw(std::max(missing, 3)) + (update == 0 ? missing : 0); plays > 0; --plays)
            DoBoth(dice.DrawPlay());
        for (int actions = dice.Draw(12); actions > 0 && !HasFailure(); --actions)
            DoBoth(dice.DrawAction(model->GetLastID()));
        ReadInBoth(dice);
        DrawDriverEvents(dice);
        UpdateBoth(lengths[dice.Draw(8)]);
        CompareLogs();
        CompareSounds();
    }
}

int Scene::NewBlock(const std::string& block)
{
    MemoryBlock& data = *memory.at(block);
    return Made(group->New2DSound(data.GetData(), data.GetSize(), &data.format));
}

bool Scene::Cat(int id, const std::string& file, bool isBlock)
{
    if (!isBlock)
        return group->CatSound(ToReal(id), PString(file.c_str()), nullptr);
    MemoryBlock& data = *memory.at(file);
    return group->CatSound(ToReal(id), data.GetData(), data.GetSize(), &data.format);
}

void Scene::SetOwner(int id, int owner)
{
    SndBase* sound = Find(ToReal(id));
    if (sound && owner)
        sound->SetSubstName(PString(ownerName));
}

void Scene::SetInPause(int id, bool on)
{
    if (SndBase* sound = Find(ToReal(id)))
        sound->SetInPause(on);
}

void Scene::SetMainGain(int kind, float gain)
{
    if (kind == 0)
        SoundSystem::Set2DMainGain(gain);
    else if (kind == Flag3D)
        SoundSystem::Set3DMainGain(gain);
    else
        SoundSystem::SetMusicMainGain(gain);
}

void Scene::ActivateListener(const Vector3& position)
{
    auto fresh = std::make_unique<Microphone>();
    fresh->SetPosition(position);
    fresh->Activate();
    microphone = std::move(fresh);
}

void Scene::MoveListener(const Vector3& position)
{
    if (microphone)
        microphone->SetPosition(position);
}

template<class World>
int Scene::PlayIn(World& world, const Action& action)
{
    int id;
    if (action.kind == Action::PlayBlock)
        id = world.NewBlock(action.file);
    else
        id = action.kind == Action::Play3D ? world.New3D(action.file) : world.New2D(action.file);
    if (action.kind != Action::PlayBlock)
        world.SetOwner(id, action.owner);
    world.SetDistances(id, minDistance, static_cast<float>(action.number), action.owner == 0);
    world.SetPosition(id, action.position);
    world.SetPriority(id, action.priority);
    world.SetDelay(id, action.ms);
    world.SetSoundGain(id, action.value);
    if (action.ms == 250)
        world.SetFadeIn(id, action.ms);
    if (!action.isOn || world.Start(id, action.flags))
        return id;
    world.Delete(id);
    return 0;
}

template<class World>
int Scene::DoIn(World& world, const Action& action)
{
    const int id = action.id;
    switch (action.kind) {
    case Action::Play2D:
    case Action::Play3D:
    case Action::PlayBlock:
        return PlayIn(world, action);
    case Action::Start:
        return world.Start(id, action.flags);
    case Action::Stop:
        world.Stop(id);
        break;
    case Action::Delete:
        world.Delete(id);
        break;
    case Action::FadeOut:
        return world.FadeOut(id, action.ms);
    case Action::Cat:
        return world.Cat(id, action.file, action.isBlock);
    case Action::Priority:
        world.SetPriority(id, action.priority);
        break;
    case Action::Gain:
        world.SetSoundGain(id, action.value);
        break;
    case Action::GroupGain:
        world.SetGroupGain(action.value);
        break;
    case Action::MainGain:
        world.SetMainGain(action.number, action.value);
        break;
    case Action::Move:
        world.SetPosition(id, action.position);
        break;
    case Action::Distances:
        world.SetDistances(id, minDistance, static_cast<float>(action.number), action.isOn);
        break;
    case Action::Frequency:
        return world.SetFrequency(id, static_cast<unsigned long>(action.number));
    case Action::Pause:
        world.SetInPause(id, action.isOn);
        break;
    case Action::MusicFadeIn:
        return world.MusicFadeIn(id, action.file, action.ms, action.isOn);
    case Action::MusicCrossFade:
        return world.MusicCrossFade(id, action.file, action.ms, action.isOn);
    case Action::MusicFadeOut:
        return world.MusicFadeOut(id, action.ms);
    case Action::MusicStop:
        world.MusicStop(id);
        break;
    case Action::MusicGain:
        world.MusicSetGain(id, action.value);
        break;
    case Action::Listener:
        world.ActivateListener(action.position);
        break;
    case Action::MoveListener:
        world.MoveListener(action.position);
        break;
    case Action::DropListener:
        world.DropListener();
        break;
    case Action::Limit:
        world.SetLimit(action.number);
        break;
    case Action::ChannelLimit:
        world.SetChannelLimit(action.number);
        break;
    case Action::StopAll:
        world.StopAll();
        break;
    case Action::StopAll2D:
        world.StopAll2D();
        break;
    case Action::StopAll3D:
        world.StopAll3D();
        break;
    case Action::AddObserver:
        world.AddObserver(id);
        break;
    case Action::RemoveObserver:
        world.RemoveObserver(id);
        break;
    }
    return 0;
}

void Scene::DoBoth(const Action& action)
{
    const int result = DoIn(*this, action);
    const int expected = DoIn(*model, action);
    if (result != expected) {
        ADD_FAILURE() << where << ": action " << action.kind << " on " << action.id << " gives " << result
                      << " instead of " << expected;
        CompareLogs();
    }
}

// What is done in answer is drawn anew in each of the two worlds, from equal dice: it is the same as long as
// the worlds are.
void Scene::React(int idNearby, bool inModel)
{
    Reactor& reactor = *reactors[inModel];
    if (reactor.depth >= maxReactionDepth || !reactor.dice.Chance(reactionPercent))
        return;
    ++reactor.depth;
    const Action action = reactor.dice.DrawAction(idNearby + 5);
    const int result = inModel ? DoIn(*model, action) : DoIn(*this, action);
    (inModel ? model->log : recording.lines)
        .push_back("answered with " + std::to_string(action.kind) + " on " + std::to_string(action.id) +
            ": " + std::to_string(result));
    --reactor.depth;
}

void Scene::ReadInBoth(SceneDice& dice)
{
    std::vector<int> numbers;
    for (const auto& [number, record] : recording.channels)
        numbers.push_back(number);
    for (int number : numbers) {
        const int frames = dice.Draw(4) * dice.Draw(400);
        recording.Read(number, frames);
        model->Read(number, frames);
    }
}

void Scene::DrawDriverEvents(SceneDice& dice)
{
    for (const auto& [number, record] : recording.channels) {
        const int kind = dice.Draw(100);
        if (kind >= 24)
            continue;
        const UpdateModel::DriverEvent event{kind < 8, number};
        const bool isAtBegin = dice.Chance(50);
        (isAtBegin ? model->atBegin : model->atEnd).push_back(event);
        (isAtBegin ? recording.atBegin : recording.atEnd).push_back([this, event] { RunDriverEvent(event); });
    }
}

// An earlier event of the same update can have ended the channel.
void Scene::RunDriverEvent(const UpdateModel::DriverEvent& event)
{
    const auto found = recording.channels.find(event.channel);
    if (found == recording.channels.end())
        return;
    if (event.isEnd)
        recording.End(event.channel);
    else if (found->second.channel->GetSndFile()->GetNext())
        recording.StepFile(event.channel);
}

void Scene::UpdateBoth(float seconds)
{
    theKernel->Update(seconds);
    model->Update(seconds);
}

void Scene::CompareLogs()
{
    const Lines real = TakeLog();
    const Lines expected = std::exchange(model->log, {});
    const auto [a, b] = std::mismatch(real.begin(), real.end(), expected.begin(), expected.end());
    if (a == real.end() && b == expected.end())
        return;
    constexpr std::ptrdiff_t context = 12;
    const auto place = a - real.begin();
    std::string text;
    for (auto i = std::max(place - context, std::ptrdiff_t{0}); i < place; ++i)
        text += "\n  both: " + real[static_cast<std::size_t>(i)];
    for (auto i = a; i != real.end() && i - a < context; ++i)
        text += "\n  real: " + *i;
    for (auto i = b; i != expected.end() && i - b < context; ++i)
        text += "\n  model: " + *i;
    ADD_FAILURE() << where << ": other calls or notes:" << text;
}

void Scene::CompareSounds()
{
    if (HasFailure())
        return;
    CompareList("playing", Playing(), model->GetPlaying());
    CompareList("emulated", Emulated(), model->GetEmulated());
    CompareList("waiting", Waiting(), model->GetWaiting());
    for (int id = 1; id <= model->GetLastID() && !HasFailure(); ++id)
        EXPECT_EQ(Describe(ToReal(id)), DescribeInModel(id)) << where;
}

void Scene::CompareList(const char* name, const Ids& real, const ModelList& list)
{
    Ids ids;
    for (int id : real)
        ids.push_back(ToModel(id));
    EXPECT_EQ(ids, Ids(list.begin(), list.end())) << where << ", list " << name;
}

std::string Scene::Describe(int id) const
{
    const SndBase* sound = Find(id);
    if (!sound)
        return "gone";
    std::ostringstream text;
    const auto channelNumber = [this](const SndChannel* channel) {
        for (const auto& [number, record] : recording.channels) {
            if (record.channel == channel)
                return number;
        }
        return 0;
    };
    text << '#' << ToModel(id) << std::hex << " flags " << sound->GetSndFlags() << " distance "
         << std::bit_cast<std::uint32_t>(sound->GetDistSqr()) << " multiplier "
         << std::bit_cast<std::uint32_t>(sound->GetMultiplier()) << std::dec << " state "
         << sound->GetStateTime() << " delay " << sound->GetDelay() << " length " << sound->GetSoundLength()
         << " channel " << channelNumber(sound->GetSndChannel()) << " fading "
         << channelNumber(sound->GetFadeOutChannel()) << " files";
    for (const SndFile* file = sound->GetSndFile(); file; file = file->GetNext())
        text << ' ' << file->GetCurrentSample() << '/' << file->GetSoundSamples();
    return text.str();
}

std::string Scene::DescribeInModel(int id) const
{
    const ModelSoundPtr sound = model->Find(id);
    if (!sound)
        return "gone";
    std::ostringstream text;
    text << '#' << id << std::hex << " flags " << sound->flags << " distance "
         << std::bit_cast<std::uint32_t>(sound->distSqr) << " multiplier "
         << std::bit_cast<std::uint32_t>(sound->multiplier) << std::dec << " state " << sound->stateTime
         << " delay " << sound->delay << " length " << sound->soundLength << " channel " << sound->channel
         << " fading " << sound->fadeOutChannel << " files";
    for (ModelFilePtr file = sound->file; file; file = file->next)
        text << ' ' << file->current << '/' << file->frames;
    return text.str();
}

} // namespace Quon
