#pragma once

#include "harmonet/instances/Music.h"
#include "tests/kernel/UpdateModel.h"
#include "tests/support/SoundTest.h"

#include <random>

namespace Quon
{

/// Something that the game, or an observer in answer to a note, does to the world. Which of the numbers count
/// is told by the kind.
struct Action
{
    enum Kind
    {
        Play2D,
        Play3D,
        PlayBlock,
        Start,
        Stop,
        Delete,
        FadeOut,
        Cat,
        Priority,
        Gain,
        GroupGain,
        MainGain,
        Move,
        Distances,
        Frequency,
        Pause,
        MusicFadeIn,
        MusicCrossFade,
        MusicFadeOut,
        MusicStop,
        MusicGain,
        Listener,
        MoveListener,
        DropListener,
        Limit,
        ChannelLimit,
        StopAll,
        StopAll2D,
        StopAll3D,
        AddObserver,
        RemoveObserver
    };

    Kind kind = Play2D;
    int id = 0; ///< Of a sound, a piece of music or an observer.
    std::string file;
    bool isBlock = false;
    int flags = 0;
    int priority = 0;
    int ms = 0;
    int owner = 0;
    int number = 0;
    float value = 0.0F;
    Vector3 position;
    bool isOn = false;
};

/// Draws what happens in a scene, the same for the same seed. Coarse numbers, so that there are many ties.
class SceneDice
{
public:
    /// `newCrowd` is about how many sounds there are to be.
    SceneDice(unsigned int seed, int newCrowd);

    int Draw(int below) { return static_cast<int>(random() % static_cast<unsigned int>(below)); }
    bool Chance(int percent) { return Draw(100) < percent; }
    Vector3 DrawPosition();
    /// `lastID` is that of the youngest sound.
    Action DrawAction(int lastID);
    /// Of those that make a sound.
    Action DrawPlay();

    static std::vector<ModelFile> GetFiles();

private:
    void DrawDetails(Action& action);

    std::mt19937 random;
    int crowd;
};

/// A world that is there twice, as the real system and as the model, in which the same random things happen,
/// and which is compared after each update. An object lives through one scene.
class Scene : public SoundTest
{
public:
    Scene();
    ~Scene() override;

    /// Many updates with what happens between them. Stops at the first difference.
    void Live(unsigned int seed, int crowd, int updates);

private:
    static constexpr const char* ownerName = "other";

    void TestBody() override {}
    // The results say whether it went well, or what id there is now.
    template<class World>
    int DoIn(World& world, const Action& action);
    template<class World>
    int PlayIn(World& world, const Action& action);
    void DoBoth(const Action& action);
    void React(int idNearby, bool inModel);
    void ReadInBoth(SceneDice& dice);
    void DrawDriverEvents(SceneDice& dice);
    void RunDriverEvent(const UpdateModel::DriverEvent& event);
    void UpdateBoth(float seconds);
    void CompareLogs();
    void CompareSounds();
    void CompareList(const char* name, const Ids& real, const ModelList& list);
    std::string Describe(int id) const;
    std::string DescribeInModel(int id) const;
    int ToReal(int id) const { return id + names->GetLastIDBefore(); }
    int ToModel(int id) const { return id - names->GetLastIDBefore(); }
    int Made(int id) const { return id ? ToModel(id) : 0; }

    // The game's side of the real system, under the model's names and with its ids.
    int New2D(const std::string& file) { return Made(group->New2DSound(PString(file.c_str()), nullptr)); }
    int New3D(const std::string& file) { return Made(group->New3DSound(PString(file.c_str()), nullptr)); }
    int NewBlock(const std::string& block);
    bool Start(int id, int flags) { return group->StartSound(ToReal(id), flags); }
    void Stop(int id) { group->StopSound(ToReal(id)); }
    void Delete(int id) { group->DeleteSound(ToReal(id)); }
    bool FadeOut(int id, int ms) { return group->FadeOutSound(ToReal(id), static_cast<unsigned int>(ms)); }
    bool Cat(int id, const std::string& file, bool isBlock);
    void SetPriority(int id, int priority) { group->SetSoundPriority(ToReal(id), priority); }
    void SetDelay(int id, int ms) { group->SetSoundDelay(ToReal(id), ms); }
    void SetFadeIn(int id, int ms) { group->SetSoundFadeIn(ToReal(id), ms); }
    void SetSoundGain(int id, float gain) { group->SetSoundGain(ToReal(id), gain); }
    void SetGroupGain(float gain) { group->SetGain(gain); }
    void SetPosition(int id, const Vector3& position) { group->SetSoundPosition(ToReal(id), position); }
    void SetDistances(int id, float nearest, float farthest, bool cutout)
    {
        group->SetSoundMinMaxDistance(ToReal(id), nearest, farthest, cutout);
    }
    bool SetFrequency(int id, unsigned long hz) { return group->SetFrequency(ToReal(id), hz); }
    void SetOwner(int id, int owner);
    void SetInPause(int id, bool on);
    static void SetMainGain(int kind, float gain);
    void SetLimit(int count) { system.SetMaxAudibleSounds(static_cast<unsigned int>(count)); }
    void SetChannelLimit(int count) { recording.channelLimit = count; }
    static void StopAll() { SoundSystem::StopAll(); }
    static void StopAll2D() { SoundSystem::StopAll2D(); }
    static void StopAll3D() { SoundSystem::StopAll3D(); }
    void AddObserver(int number) { group->AddObserver(others.at(number - 1).get()); }
    void RemoveObserver(int number) { group->RemoveObserver(others.at(number - 1).get()); }
    bool MusicFadeIn(int handle, const std::string& file, int ms, bool loop)
    {
        return music[handle].FadeIn(PString(file.c_str()), ms, loop);
    }
    bool MusicCrossFade(int handle, const std::string& file, int ms, bool loop)
    {
        return music[handle].CrossFade(PString(file.c_str()), ms, loop);
    }
    bool MusicFadeOut(int handle, int ms) { return music[handle].FadeOut(ms); }
    void MusicStop(int handle) { music[handle].Stop(); }
    void MusicSetGain(int handle, float gain) { music[handle].SetGain(gain); }
    void ActivateListener(const Vector3& position);
    void MoveListener(const Vector3& position);
    void DropListener() { microphone.reset(); }

    struct Reactor
    {
        explicit Reactor(unsigned int seed)
            : dice(seed, 0)
        {
        }

        SceneDice dice;
        int depth = 0;
    };

    std::unique_ptr<UpdateModel> model;
    std::string where; ///< For whoever reads of a failure.
    std::unique_ptr<Reactor> reactors[2];
    std::vector<std::unique_ptr<LoggingObserver>> others;
    std::map<std::string, MemoryBlock*> memory;
    Music music[2];
};

} // namespace Quon
