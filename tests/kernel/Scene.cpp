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

/// What can be done in either world.
class Deed
{
public:
    /// `newWeight` tells how often it comes up, as against the others.
    template<class Do>
    Deed(const char* newName, int newWeight, Do act)
        : name(newName)
        , weight(newWeight)
        , inReal([act](Scene& scene, const Action& action) { return CallFor(act, scene, action); })
        , inModel([act](UpdateModel& model, const Action& action) { return CallFor(act, model, action); })
    {
    }

    /// The result says whether it went well, or what id there is now.
    int In(Scene& scene, const Action& action) const { return inReal(scene, action); }
    int In(UpdateModel& model, const Action& action) const { return inModel(model, action); }

    const char* name;
    int weight;

private:
    template<class Do, class World>
    static int CallFor(Do act, World& world, const Action& action)
    {
        if constexpr (std::is_void_v<decltype(act(world, action))>)
            return act(world, action), 0;
        else
            return act(world, action);
    }

    std::function<int(Scene&, const Action&)> inReal;
    std::function<int(UpdateModel&, const Action&)> inModel;
};

template<class World>
int Play(World& world, const Action& action)
{
    constexpr float minDistance = 1.0F;
    auto& group = world.GetGroup();
    const bool isBlock = action.made == Action::Block;
    const int id = isBlock               ? world.NewBlock(action.file)
        : action.made == Action::Sound3D ? world.New3D(action.file)
                                         : world.New2D(action.file);
    if (!isBlock)
        world.SetOwner(id, action.owner);
    group.SetSoundMinMaxDistance(id, minDistance, action.maxDistance, action.owner == 0);
    group.SetSoundPosition(id, action.position);
    group.SetSoundPriority(id, action.priority);
    group.SetSoundDelay(id, action.ms);
    group.SetSoundGain(id, action.gain);
    if (action.ms == 250)
        group.SetSoundFadeIn(id, action.ms);
    if (!action.isOn || group.StartSound(id, action.flags))
        return id;
    group.DeleteSound(id);
    return 0;
}

/// By weight, and with an action's details. Those that end all sounds are rarer than any other: see
/// DrawAction.
const Deed deeds[] = {
    {"play", 29, [](auto& world, auto& with) { return Play(world, with); }},
    {"start", 6, [](auto& world, auto& with) { return world.GetGroup().StartSound(with.id, with.flags); }},
    {"stop", 14, [](auto& world, auto& with) { world.GetGroup().StopSound(with.id); }},
    {"delete", 5, [](auto& world, auto& with) { world.GetGroup().DeleteSound(with.id); }},
    {"fade out", 8, [](auto& world, auto& with) { return world.GetGroup().FadeOutSound(with.id, with.ms); }},
    {"append", 10, [](auto& world, auto& with) { return world.Cat(with.id, with.file, with.isBlock); }},
    {"priority", 8,
        [](auto& world, auto& with) { world.GetGroup().SetSoundPriority(with.id, with.priority); }},
    {"gain", 5, [](auto& world, auto& with) { world.GetGroup().SetSoundGain(with.id, with.gain); }},
    {"group gain", 1, [](auto& world, auto& with) { world.GetGroup().SetGain(with.gain); }},
    {"main gain", 1, [](auto& world, auto& with) { world.SetMainGain(with.gainKind, with.gain); }},
    {"move", 14, [](auto& world, auto& with) { world.GetGroup().SetSoundPosition(with.id, with.position); }},
    {"distances", 4,
        [](auto& world, auto& with) {
            world.GetGroup().SetSoundMinMaxDistance(with.id, 1.0F, with.maxDistance, with.isOn);
        }},
    {"rate", 4, [](auto& world, auto& with) { return world.GetGroup().SetFrequency(with.id, with.hz); }},
    {"pause", 4, [](auto& world, auto& with) { world.SetInPause(with.id, with.isOn); }},
    {"music fade-in", 3,
        [](auto& world, auto& with) {
            return world.MusicFadeIn(with.handle, with.musicFile, with.ms, with.isOn);
        }},
    {"music cross-fade", 3,
        [](auto& world, auto& with) {
            return world.MusicCrossFade(with.handle, with.musicFile, with.ms, with.isOn);
        }},
    {"music fade-out", 2, [](auto& world, auto& with) { return world.MusicFadeOut(with.handle, with.ms); }},
    {"music stop", 1, [](auto& world, auto& with) { world.MusicStop(with.handle); }},
    {"music gain", 1, [](auto& world, auto& with) { world.MusicSetGain(with.handle, with.gain); }},
    {"listener", 2, [](auto& world, auto& with) { world.ActivateListener(with.position); }},
    {"move listener", 8, [](auto& world, auto& with) { world.MoveListener(with.position); }},
    {"drop listener", 2, [](auto& world, auto&) { world.DropListener(); }},
    {"limit", 4, [](auto& world, auto& with) { world.SetLimit(with.limit); }},
    {"channel limit", 2, [](auto& world, auto& with) { world.SetChannelLimit(with.channelLimit); }},
    {"add observer", 4, [](auto& world, auto& with) { world.AddObserver(with.observer); }},
    {"remove observer", 4, [](auto& world, auto& with) { world.RemoveObserver(with.observer); }},
    {"stop all", 0, [](auto& world, auto&) { world.StopAll(); }},
    {"stop all 2D", 0, [](auto& world, auto&) { world.StopAll2D(); }},
    {"stop all 3D", 0, [](auto& world, auto&) { world.StopAll3D(); }},
};

std::string Describe(const ModelSound& sound)
{
    std::ostringstream text;
    text << '#' << sound.id << std::hex << " flags " << sound.flags << " distance "
         << std::bit_cast<std::uint32_t>(sound.distSqr) << " multiplier "
         << std::bit_cast<std::uint32_t>(sound.multiplier) << std::dec << " state " << sound.stateTime
         << " delay " << sound.delay << " length " << sound.soundLength << " channel " << sound.channel
         << " fading " << sound.fadeOutChannel << " files";
    for (ModelFilePtr file = sound.file; file; file = file->next)
        text << ' ' << file->current << '/' << file->frames;
    return text.str();
}

} // namespace

Scene::Scene()
    : model(std::make_unique<UpdateModel>(names->GetLastIDBefore()))
{
    File::AddRoot(PString(ownerName), folder.GetPath().string().c_str());
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
    model->ActivateListener(origin);
    model->log.clear();
    observer->react = [this](const Note& note) { React(note.id, false); };
    model->react = [this](const Note& note) { React(note.id, true); };
}

Scene::~Scene()
{
    File::RemoveRoot(PString(ownerName));
}

void Scene::Live(unsigned int seed, int crowd, int updates)
{
    SceneDice dice(seed, crowd);
    for (auto& reactions : reactionDice)
        reactions = std::make_unique<SceneDice>(seed, 0);
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
            DoBoth(DrawAction(dice, model->GetLastID()));
        DrawDriverEvents(dice);
        const float seconds = lengths[dice.Draw(8)];
        theKernel->Update(seconds);
        model->Update(seconds);
        CompareLogs();
        CompareSounds();
    }
}

int Scene::NewBlock(const std::string& block)
{
    MemoryBlock& data = *memory.at(block);
    return group->New2DSound(data.GetData(), data.GetSize(), &data.format);
}

bool Scene::Cat(int id, const std::string& file, bool isBlock)
{
    if (!isBlock)
        return group->CatSound(id, PString(file.c_str()), nullptr);
    MemoryBlock& data = *memory.at(file);
    return group->CatSound(id, data.GetData(), data.GetSize(), &data.format);
}

void Scene::SetOwner(int id, int owner)
{
    SndBase* sound = Find(id);
    if (sound && owner)
        sound->SetSubstName(PString(ownerName));
}

void Scene::SetInPause(int id, bool on)
{
    if (SndBase* sound = Find(id))
        sound->SetInPause(on);
}

void Scene::SetMainGain(std::uint32_t kind, float gain)
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

Action Scene::DrawAction(SceneDice& dice, int lastID) const
{
    constexpr int rareDeeds = 3;
    int deed = static_cast<int>(std::size(deeds)) - rareDeeds;
    if (dice.Chance(1) && dice.Chance(50)) {
        deed += dice.Draw(rareDeeds);
    }
    else {
        int total = 0;
        for (const Deed& any : deeds)
            total += any.weight;
        int place = dice.Draw(total);
        for (deed = 0; place >= deeds[deed].weight; ++deed)
            place -= deeds[deed].weight;
    }
    Action action = deed == 0 ? dice.DrawPlay() : dice.DrawAction(lastID, lastID - names->GetLastIDBefore());
    action.deed = deed;
    return action;
}

void Scene::DoBoth(const Action& action)
{
    const Deed& deed = deeds[action.deed];
    const int result = deed.In(*this, action);
    const int expected = deed.In(*model, action);
    if (result != expected) {
        ADD_FAILURE() << where << ": " << deed.name << " on " << names->GetName(action.id) << " gives "
                      << result << " instead of " << expected;
        CompareLogs();
    }
}

// What is done in answer is drawn anew in each of the two worlds, from equal dice: it is the same as long as
// the worlds are.
void Scene::React(int idNearby, bool inModel)
{
    SceneDice& dice = *reactionDice[inModel];
    int& depth = reactionDepth[inModel];
    if (depth >= maxReactionDepth || !dice.Chance(reactionPercent))
        return;
    ++depth;
    const Action action = DrawAction(dice, idNearby + 5);
    const Deed& deed = deeds[action.deed];
    const int result = inModel ? deed.In(*model, action) : deed.In(*this, action);
    (inModel ? model->log : recording.lines)
        .push_back(std::string("answered with ") + deed.name + " on " + names->GetName(action.id) + ": " +
            std::to_string(result));
    --depth;
}

void Scene::DrawDriverEvents(SceneDice& dice)
{
    for (const auto& [number, record] : recording.channels) {
        const int frames = dice.Draw(4) * dice.Draw(400);
        recording.Read(number, frames);
        model->Read(number, frames);
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

// As texts of many lines, of which a failure shows where they differ.
void Scene::CompareLogs()
{
    const auto join = [](const Lines& lines) {
        std::string text;
        for (const std::string& line : lines)
            text += line + '\n';
        return text;
    };
    EXPECT_EQ(join(TakeLog()), join(std::exchange(model->log, {}))) << where;
}

void Scene::CompareSounds()
{
    if (HasFailure())
        return;
    const auto toIds = [](const ModelList& list) { return Ids(list.begin(), list.end()); };
    EXPECT_EQ(Playing(), toIds(model->GetPlaying())) << where;
    EXPECT_EQ(Emulated(), toIds(model->GetEmulated())) << where;
    EXPECT_EQ(Waiting(), toIds(model->GetWaiting())) << where;
    for (int id = names->GetLastIDBefore() + 1; id <= model->GetLastID() && !HasFailure(); ++id) {
        const ModelSoundPtr real = DescribeReal(id);
        const ModelSoundPtr expected = model->Find(id);
        ASSERT_EQ(real != nullptr, expected != nullptr) << where << ": " << names->GetName(id);
        if (real) {
            EXPECT_EQ(Describe(*real), Describe(*expected)) << where;
        }
    }
}

/// As the model would have it, as far as the two are compared.
ModelSoundPtr Scene::DescribeReal(int id) const
{
    const SndBase* sound = Find(id);
    if (!sound)
        return nullptr;
    const auto real = std::make_shared<ModelSound>();
    real->id = id;
    real->flags = sound->GetSndFlags();
    real->distSqr = sound->GetDistSqr();
    real->multiplier = sound->GetMultiplier();
    real->stateTime = sound->GetStateTime();
    real->delay = sound->GetDelay();
    real->soundLength = sound->GetSoundLength();
    real->channel = GetNumber(sound->GetSndChannel());
    real->fadeOutChannel = GetNumber(sound->GetFadeOutChannel());
    ModelFilePtr* end = &real->file;
    for (const SndFile* file = sound->GetSndFile(); file; file = file->GetNext()) {
        *end = std::make_shared<ModelFile>();
        (*end)->current = file->GetCurrentSample();
        (*end)->frames = file->GetSoundSamples();
        end = &(*end)->next;
    }
    return real;
}

int Scene::GetNumber(const SndChannel* channel) const
{
    for (const auto& [number, record] : recording.channels) {
        if (record.channel == channel)
            return number;
    }
    return 0;
}

} // namespace Quon
