#pragma once

#include "harmonet/engine/Vector.h"
#include "harmonet/instances/SndBase.h"
#include "tests/support/LoggingObserver.h"

#include <array>
#include <deque>
#include <memory>

namespace Quon
{

/// A sound file or block of memory of the model's world.
struct ModelFile
{
    std::string name; ///< Of a block: as it is called in the log.
    bool isBlock = false;
    int rateHz = 0;
    int frames = 0;
    int current = 0;
    std::shared_ptr<ModelFile> next = nullptr;

    unsigned long GetLength() const { return static_cast<unsigned long>(frames) * 1000UL / rateHz; }
    unsigned long GetRemainLength() const;
    int Skip(int count);
};

using ModelFilePtr = std::shared_ptr<ModelFile>;

struct ModelSound
{
    int id = 0;
    bool hasGroup = false;
    bool isTold = false; ///< A notification about it is running.
    bool isNew = false; ///< Started while the running update was on its way.
    bool isInTable = true;
    std::uint32_t flags = 0;
    std::string fileName;
    int owner = 0;
    ModelFilePtr file;
    unsigned long stateTime = 1000;
    unsigned long soundLength = 0xFFFFFFFF;
    int fadeDuration = 0;
    float gain = 1.0F;
    int priority = 0;
    float distSqr = 0.0F;
    float multiplier = 1.0F;
    int delay = 0;
    unsigned long newFrequency = 0;
    int channel = 0;
    int fadeOutChannel = 0;
    int musicHandle = -1;

    // Of a positional sound.
    Vector3 position;
    bool hasMoved = true;
    bool cutout = false;
    float minDistance = 0.0F;
    float maxDistance = 0.0F;

    bool Has(std::uint32_t mask) const { return (flags & mask) != 0; }
};

using ModelSoundPtr = std::shared_ptr<ModelSound>;
using ModelList = std::deque<int>;

/// The rules by which sounds are started, heard, run unheard and end, in their plainest form: containers of
/// ids, the quadratic search for duplicates, sorting by insertion, and the best of a list by looking at all
/// of it. It keeps the same log as the recording driver and the observers do, line by line.
///
/// It knows wave files, blocks of memory, sounds without and with a place, queues, music, one listener, and a
/// group with several observers, of which the first can answer what it hears of.
class UpdateModel
{
public:
    /// Its ids go on behind this one, as those of the real system do.
    explicit UpdateModel(int lastIDBefore)
        : idOffset(lastIDBefore)
        , lastID(lastIDBefore)
    {
    }

    // The world around.

    /// The files that exist, by name; what is not here cannot be opened.
    std::map<std::string, ModelFile> files;
    Lines log;
    /// What the first observer does about a note.
    std::function<void(const Note&)> react;

    // What the game asks of its group. Ids that are gone find nothing.

    UpdateModel& GetGroup() { return *this; }
    bool StartSound(int id, int startFlags);
    void StopSound(int id);
    void DeleteSound(int id);
    bool FadeOutSound(int id, int ms);
    void SetSoundPriority(int id, int priority);
    void SetSoundDelay(int id, int ms);
    void SetSoundFadeIn(int id, int ms);
    void SetSoundGain(int id, float gain);
    void SetGain(float gain);
    void SetSoundPosition(int id, const Vector3& position);
    void SetSoundMinMaxDistance(int id, float minDistance, float maxDistance, bool cutout);
    bool SetFrequency(int id, unsigned long hz);

    // The rest of the game's side.

    int New2D(const std::string& fileName) { return New(FlagDistLTMax, fileName); }
    int New3D(const std::string& fileName) { return New(Flag3D, fileName); }
    int NewBlock(const std::string& blockName);
    bool Cat(int id, const std::string& fileName, bool isBlock);
    void SetOwner(int id, int owner);
    void SetInPause(int id, bool on);
    void SetMainGain(std::uint32_t kind, float gain);
    void SetLimit(int count) { maxAudible = count; }
    void SetChannelLimit(int count) { channelLimit = count; } ///< Of the driver.
    void StopAll();
    void StopAll2D()
    {
        StopMatching([](const ModelSound& sound) { return !sound.Has(Flag3D | FlagMusic); });
    }
    void StopAll3D()
    {
        StopMatching([](const ModelSound& sound) { return sound.Has(Flag3D); });
    }
    void AddObserver(int number);
    void RemoveObserver(int number);

    bool MusicFadeIn(int handle, const std::string& fileName, int ms, bool loop);
    bool MusicCrossFade(int handle, const std::string& fileName, int ms, bool loop);
    bool MusicFadeOut(int handle, int ms);
    void MusicStop(int handle);
    void MusicSetGain(int handle, float gain);

    void ActivateListener(const Vector3& position);
    void MoveListener(const Vector3& position);
    void DropListener();

    // The driver's side.

    void Read(int channel, int sampleFrames);
    /// Done inside the next update, at its begin or its end.
    struct DriverEvent
    {
        bool isEnd;
        int channel;
    };
    std::vector<DriverEvent> atBegin;
    std::vector<DriverEvent> atEnd;

    void Update(float seconds);

    // What has become of it.

    ModelSoundPtr Find(int id) const;
    int GetLastID() const { return lastID; }
    const ModelList& GetPlaying() const { return playing; }
    const ModelList& GetEmulated() const { return emulated; }
    const ModelList& GetWaiting() const { return waiting; }
    const std::map<int, ModelFilePtr>& GetChannels() const { return channels; }

private:
    struct Observer
    {
        int number;
        bool active;
    };
    struct Music
    {
        int id = 0;
        float gain = 1.0F;
    };
    using Bucket = std::vector<int>;

    // UpdateModelGame.cpp
    int New(std::uint32_t flags, const std::string& fileName);
    ModelSoundPtr Add(std::uint32_t flags);
    Bucket& GetBucket(int id);
    void RemoveFromTable(int id);
    std::vector<int> GetTableOrder() const;
    void DeleteMatching(const std::function<bool(const ModelSound&)>& matches);
    void StopListed(const std::function<bool(const ModelSound&)>& matches);
    void StopMatching(const std::function<bool(const ModelSound&)>& matches)
    {
        StopListed(matches);
        DeleteMatching(matches);
    }
    void Refresh(const std::function<bool(const ModelSound&)>& matches);
    std::string GetName(const ModelSound& sound) const;
    void Notify(const std::string& line, const Note& note);
    ModelSoundPtr FindMusic(int handle) const;

    // UpdateModelSounds.cpp
    ModelFilePtr Open(ModelSound& sound) const;
    ModelSoundPtr FindLike(const ModelSound& sound) const;
    bool PlaySound(const ModelSoundPtr& sound);
    bool StartChannel(const ModelSoundPtr& sound);
    bool EmulateSound(const ModelSoundPtr& sound);
    bool EmulateOrDestroy(const ModelSoundPtr& sound);
    void Play(const ModelSoundPtr& sound, const ModelFilePtr& file);
    bool Emulate(const ModelSoundPtr& sound);
    void Destroy(const ModelSoundPtr& sound);
    void NotifyEnd(ModelSound& sound);
    void ReleaseFadeOut(const ModelSoundPtr& sound);
    void CloseQueue(ModelSound& sound, const ModelFilePtr& file);
    void CloseBehind(ModelSound& sound, const ModelFilePtr& file);
    void CloseFile(ModelSound& sound, const ModelFile& file);
    void Say(int channel, const std::string& call);
    void StopChannel(int& channel);
    unsigned long GetQueueLength(const ModelSound& sound) const;
    unsigned long GetRemainLength(const ModelSound& sound) const;
    bool IsLongEnough(const ModelSound& sound) const { return GetRemainLength(sound) >= 500; }
    float GetOutputGain(const ModelSound& sound) const;
    void SetGain(ModelSound& sound, float gain);
    void UpdatePosition(ModelSound& sound);
    void CalcDistSqr(ModelSound& sound, const Vector3& listener) const;
    bool FadeOut(const ModelSoundPtr& sound, int ms);
    bool SndUpdate(const ModelSoundPtr& sound, float seconds, const Vector3& listener, bool listenerMoved);
    bool Advance(const ModelSoundPtr& sound, std::uint32_t samples);
    void OnChannelEnded(int channel);
    void OnFileChanged(int channel);

    // UpdateModel.cpp
    bool IsLess(int a, int b) const;
    void InsertSorted(ModelList& list, int id);
    void TakeOffLists(int id);
    bool IsOn(const ModelList& list, int id) const;
    std::vector<ModelSoundPtr> Snapshot(const ModelList& list) const;
    bool IsStill(const ModelList& list, const ModelSoundPtr& sound) const;
    void Deliver(std::vector<DriverEvent>& events);
    int CountDown(const Vector3& listener);
    void UpdateEmulated(float seconds, const Vector3& listener, bool listenerMoved);
    void UpdatePlaying(float seconds, const Vector3& listener, bool listenerMoved);
    void StartAll();
    void Allocate();
    void RateDuplicates();
    void Sort(ModelList& list);
    void Choose();
    void DisplaceLosers();
    void StartChosen();
    void DisplaceWaiting();
    int PickBest(ModelList& list);
    bool IsEligible(int id) const;

    const int idOffset;
    int lastID;
    std::map<int, ModelSoundPtr> sounds; ///< Those that exist, also those that are on their way out.
    /// The table. No rule says in what order a bucket is; the last entry fills a gap.
    std::array<Bucket, 32> buckets;
    ModelList playing;
    ModelList emulated;
    ModelList waiting;
    ModelList chosen;
    std::map<int, ModelFilePtr> channels; ///< The file of each channel in use.
    std::map<int, bool> channelLoops;
    int lastChannel = 0;

    std::vector<Observer> observers = {{0, true}};
    int notifyDepth = 0;
    float groupGain = 1.0F;
    Music music[2];
    std::map<std::uint32_t, float> mainGains = {{0, 1.0F}, {Flag3D, 1.0F}, {FlagMusic, 1.0F}};

    bool hasListener = false;
    bool listenerHasChanged = false; ///< The listener's own mark.
    Vector3 listenerPosition;
    bool listenerChanged = true;
    unsigned long elapsed = 0;
    int maxAudible = 20;
    int channelLimit = 1 << 30;
    bool useMultiplier = true;
    bool isOnItsWay = false; ///< An update is behind its third step.
    bool refusesSounds = false;
};

} // namespace Quon
