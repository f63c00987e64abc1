#pragma once

#include "harmonet/instances/Music.h"
#include "tests/kernel/UpdateModel.h"
#include "tests/support/SoundTest.h"

#include <random>

namespace Quon
{

/// Something that the game, or an observer in answer to a note, does to the world, with all that it could
/// need; which of the numbers count is told by the deed.
struct Action
{
    int deed = 0; ///< Of the scene's list.
    int id = 0;
    enum
    {
        Sound3D,
        Sound2D,
        Block
    } made = Sound3D;
    std::string file;
    bool isBlock = false;
    std::string musicFile;
    int handle = 0; ///< Of music.
    int observer = 0;
    int flags = 0;
    int priority = 0;
    int ms = 0;
    int owner = 0;
    float maxDistance = 0.0F;
    float gain = 0.0F;
    std::uint32_t gainKind = 0;
    unsigned long hz = 0;
    int limit = 0;
    int channelLimit = 0;
    Vector3 position;
    bool isOn = false;
};

/// Draws what happens in a scene, the same for the same seed. Coarse numbers, so that there are many ties.
class SceneDice
{
public:
    /// `newCrowd` is about how many sounds there are to be.
    SceneDice(unsigned int seed, int newCrowd)
        : random(seed)
        , crowd(newCrowd)
    {
    }

    int Draw(int below) { return static_cast<int>(random() % static_cast<unsigned int>(below)); }
    bool Chance(int percent) { return Draw(100) < percent; }
    /// The details of any deed; `lastID` is that of the youngest sound, `count` that of all so far.
    Action DrawAction(int lastID, int count);
    /// Of a deed that makes a sound.
    Action DrawPlay();

    static std::vector<ModelFile> GetFiles();

private:
    Vector3 DrawPosition();

    std::mt19937 random;
    int crowd;
};

/// A world that is there twice, as the real system and as the model, in which the same random things happen,
/// and which is compared after each update. An object lives through one scene.
class Scene : public SoundTest
{
public:
    static constexpr int numOtherObservers = 6;

    Scene();
    ~Scene() override;

    /// Many updates with what happens between them. Stops at the first difference.
    void Live(unsigned int seed, int crowd, int updates);

    // The game's side of the real system, as far as the model does not have it under the same name.

    Sound& GetGroup() { return *group; }
    int New2D(const std::string& file) { return group->New2DSound(PString(file.c_str()), nullptr); }
    int New3D(const std::string& file) { return group->New3DSound(PString(file.c_str()), nullptr); }
    int NewBlock(const std::string& block);
    bool Cat(int id, const std::string& file, bool isBlock);
    void SetOwner(int id, int owner);
    void SetInPause(int id, bool on);
    static void SetMainGain(std::uint32_t kind, float gain);
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

private:
    static constexpr const char* ownerName = "other";

    void TestBody() override {}
    Action DrawAction(SceneDice& dice, int lastID) const;
    void DoBoth(const Action& action);
    void React(int idNearby, bool inModel);
    void DrawDriverEvents(SceneDice& dice);
    void RunDriverEvent(const UpdateModel::DriverEvent& event);
    void CompareLogs();
    void CompareSounds();
    ModelSoundPtr DescribeReal(int id) const;
    int GetNumber(const SndChannel* channel) const;

    std::unique_ptr<UpdateModel> model;
    std::string where; ///< For whoever reads of a failure.
    /// Of the observers in the real system and in the model.
    std::unique_ptr<SceneDice> reactionDice[2];
    int reactionDepth[2] = {};
    std::vector<std::unique_ptr<LoggingObserver>> others;
    std::map<std::string, MemoryBlock*> memory;
    Music music[2];
};

} // namespace Quon
