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
        RemoveObserver,
        NumKinds
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
    int Do(const Action& action);
    int DoPlay(const Action& action);
    int DoInModel(const Action& action);
    int PlayInModel(const Action& action);
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
    std::array<Music, 2> music;
};

} // namespace Quon
