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

int GetMainGainKind(int number)
{
    constexpr int kinds[] = {0, static_cast<int>(Flag3D), static_cast<int>(FlagMusic)};
    return kinds[number];
}

void SetMainGain(int number, float gain)
{
    if (number == 0)
        SoundSystem::Set2DMainGain(gain);
    else if (number == 1)
        SoundSystem::Set3DMainGain(gain);
    else
        SoundSystem::SetMusicMainGain(gain);
}

} // namespace

Scene::Scene()
    : model(std::make_unique<UpdateModel>())
{
    File::AddRoot(PString(ownerName), folder.GetPath().c_str());
    for (const ModelFile& file : SceneDice::GetFiles()) {
        model->files[file.name] = file;
        const PcmForm form{file.frames, file.rateHz};
        if (file.isBlock)
            memory[file.name] = &NewBlock(file.name, form);
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

void Scene::DoBoth(const Action& action)
{
    const int result = Do(action);
    const int expected = DoInModel(action);
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
    const int result = inModel ? DoInModel(action) : Do(action);
    (inModel ? model->log : recording.lines)
        .push_back("answered with " + std::to_string(action.kind) + " on " + std::to_string(action.id) +
            ": " + std::to_string(result));
    --reactor.depth;
}

int Scene::DoPlay(const Action& action)
{
    const PString file(action.file.c_str());
    int id;
    if (action.kind == Action::PlayBlock) {
        MemoryBlock& block = *memory.at(action.file);
        id = group->New2DSound(block.GetData(), block.GetSize(), &block.format);
    }
    else {
        id = action.kind == Action::Play3D ? group->New3DSound(file, nullptr)
                                           : group->New2DSound(file, nullptr);
        if (id && action.owner)
            Find(id)->SetSubstName(PString(ownerName));
    }
    group->SetSoundMinMaxDistance(id, minDistance, static_cast<float>(action.number), action.owner == 0);
    group->SetSoundPosition(id, action.position);
    group->SetSoundPriority(id, action.priority);
    group->SetSoundDelay(id, action.ms);
    group->SetSoundGain(id, action.value);
    if (action.ms == 250)
        group->SetSoundFadeIn(id, action.ms);
    if (!action.isOn || group->StartSound(id, action.flags))
        return id ? ToModel(id) : 0;
    group->DeleteSound(id);
    return 0;
}

int Scene::PlayInModel(const Action& action)
{
    int id;
    if (action.kind == Action::PlayBlock)
        id = model->NewBlock(action.file);
    else
        id = action.kind == Action::Play3D ? model->New3D(action.file) : model->New2D(action.file);
    if (action.kind != Action::PlayBlock)
        model->SetOwner(id, action.owner);
    model->SetDistances(id, minDistance, static_cast<float>(action.number), action.owner == 0);
    model->SetPosition(id, action.position);
    model->SetPriority(id, action.priority);
    model->SetDelay(id, action.ms);
    model->SetSoundGain(id, action.value);
    if (action.ms == 250)
        model->SetFadeIn(id, action.ms);
    if (!action.isOn || model->Start(id, action.flags))
        return id;
    model->Delete(id);
    return 0;
}

int Scene::Do(const Action& action)
{
    const int id = ToReal(action.id);
    const PString file(action.file.c_str());
    switch (action.kind) {
    case Action::Play2D:
    case Action::Play3D:
    case Action::PlayBlock:
        return DoPlay(action);
    case Action::Start:
        return group->StartSound(id, action.flags);
    case Action::Stop:
        group->StopSound(id);
        return 0;
    case Action::Delete:
        group->DeleteSound(id);
        return 0;
    case Action::FadeOut:
        return group->FadeOutSound(id, static_cast<unsigned int>(action.ms));
    case Action::Cat:
        if (!action.isBlock)
            return group->CatSound(id, file, nullptr);
        return group->CatSound(id, memory.at(action.file)->GetData(), memory.at(action.file)->GetSize(),
            &memory.at(action.file)->format);
    case Action::Priority:
        group->SetSoundPriority(id, action.priority);
        return 0;
    case Action::Gain:
        group->SetSoundGain(id, action.value);
        return 0;
    case Action::GroupGain:
        group->SetGain(action.value);
        return 0;
    case Action::MainGain:
        SetMainGain(action.number, action.value);
        return 0;
    case Action::Move:
        group->SetSoundPosition(id, action.position);
        return 0;
    case Action::Distances:
        group->SetSoundMinMaxDistance(id, minDistance, static_cast<float>(action.number), action.isOn);
        return 0;
    case Action::Frequency:
        return group->SetFrequency(id, static_cast<unsigned long>(action.number));
    case Action::Pause:
        if (SndBase* sound = Find(id))
            sound->SetInPause(action.isOn);
        return 0;
    case Action::MusicFadeIn:
        return music[static_cast<std::size_t>(action.id)].FadeIn(file, action.ms, action.isOn);
    case Action::MusicCrossFade:
        return music[static_cast<std::size_t>(action.id)].CrossFade(file, action.ms, action.isOn);
    case Action::MusicFadeOut:
        return music[static_cast<std::size_t>(action.id)].FadeOut(action.ms);
    case Action::MusicStop:
        music[static_cast<std::size_t>(action.id)].Stop();
        return 0;
    case Action::MusicGain:
        music[static_cast<std::size_t>(action.id)].SetGain(action.value);
        return 0;
    case Action::Listener: {
        auto fresh = std::make_unique<Microphone>();
        fresh->SetPosition(action.position);
        fresh->Activate();
        microphone = std::move(fresh);
        return 0;
    }
    case Action::MoveListener:
        if (microphone)
            microphone->SetPosition(action.position);
        return 0;
    case Action::DropListener:
        microphone.reset();
        return 0;
    case Action::Limit:
        system.SetMaxAudibleSounds(static_cast<unsigned int>(action.number));
        return 0;
    case Action::ChannelLimit:
        recording.channelLimit = action.number;
        return 0;
    case Action::StopAll:
        SoundSystem::StopAll();
        return 0;
    case Action::StopAll2D:
        SoundSystem::StopAll2D();
        return 0;
    case Action::StopAll3D:
        SoundSystem::StopAll3D();
        return 0;
    case Action::AddObserver:
        group->AddObserver(others[static_cast<std::size_t>(action.id - 1)].get());
        return 0;
    case Action::RemoveObserver:
        group->RemoveObserver(others[static_cast<std::size_t>(action.id - 1)].get());
        return 0;
    case Action::NumKinds:
        break;
    }
    return -1;
}

int Scene::DoInModel(const Action& action)
{
    switch (action.kind) {
    case Action::Play2D:
    case Action::Play3D:
    case Action::PlayBlock:
        return PlayInModel(action);
    case Action::Start:
        return model->Start(action.id, action.flags);
    case Action::Stop:
        model->Stop(action.id);
        return 0;
    case Action::Delete:
        model->Delete(action.id);
        return 0;
    case Action::FadeOut:
        return model->FadeOut(action.id, action.ms);
    case Action::Cat:
        return model->Cat(action.id, action.file, action.isBlock);
    case Action::Priority:
        model->SetPriority(action.id, action.priority);
        return 0;
    case Action::Gain:
        model->SetSoundGain(action.id, action.value);
        return 0;
    case Action::GroupGain:
        model->SetGroupGain(action.value);
        return 0;
    case Action::MainGain:
        model->SetMainGain(GetMainGainKind(action.number), action.value);
        return 0;
    case Action::Move:
        model->SetPosition(action.id, action.position);
        return 0;
    case Action::Distances:
        model->SetDistances(action.id, minDistance, static_cast<float>(action.number), action.isOn);
        return 0;
    case Action::Frequency:
        return model->SetFrequency(action.id, static_cast<unsigned long>(action.number));
    case Action::Pause:
        model->SetInPause(action.id, action.isOn);
        return 0;
    case Action::MusicFadeIn:
        return model->MusicFadeIn(action.id, action.file, action.ms, action.isOn);
    case Action::MusicCrossFade:
        model->MusicFadeOut(action.id, action.ms);
        return model->MusicFadeIn(action.id, action.file, action.ms, action.isOn);
    case Action::MusicFadeOut:
        return model->MusicFadeOut(action.id, action.ms);
    case Action::MusicStop:
        model->MusicStop(action.id);
        return 0;
    case Action::MusicGain:
        model->MusicSetGain(action.id, action.value);
        return 0;
    case Action::Listener:
        model->ActivateListener(action.position);
        return 0;
    case Action::MoveListener:
        model->MoveListener(action.position);
        return 0;
    case Action::DropListener:
        model->DropListener();
        return 0;
    case Action::Limit:
        model->SetLimit(action.number);
        return 0;
    case Action::ChannelLimit:
        model->channelLimit = action.number;
        return 0;
    case Action::StopAll:
        model->StopAll();
        return 0;
    case Action::StopAll2D:
        model->StopAll2D();
        return 0;
    case Action::StopAll3D:
        model->StopAll3D();
        return 0;
    case Action::AddObserver:
        model->AddObserver(action.id);
        return 0;
    case Action::RemoveObserver:
        model->RemoveObserver(action.id);
        return 0;
    case Action::NumKinds:
        break;
    }
    return -1;
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
        recording.Send(recording.StepFile(event.channel));
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
